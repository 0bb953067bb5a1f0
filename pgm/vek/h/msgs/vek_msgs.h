#ifndef VEK_MSGS_H
#define VEK_MSGS_H

#include "msg_debug.h"
#include "msg_index.h"
#include "msg_types.h"

#include <array>
#include <string>

/// The messages of the tool: one factory each. A factory builds the message with its id and arguments; the
/// caller reports it with report(nullptr) and deletes it. The factories hold no state and may be called on
/// any thread.
namespace MSG_VEK
{

/// Plain output.
namespace O
{
MSG_O* MULTIPLE_BITSTREAMS_UNSUPPORTED(const std::string& configuration_mode);
MSG_O* MIXED_FAMILIES_BITSTREAMS_UNSUPPORTED(const std::string& file, const std::string& family,
                                             const std::string& existing_family);
MSG_O* DEVICE_DOES_NOT_SUPPORT_MULTIPLE_BITSTREAMS(const std::string& file, const std::string& device);
MSG_O* FILE_PRECHECK_FAILED(const std::string& reason);
} // namespace O

/// Questions; report() returns MSG_ANSWER_YES or MSG_ANSWER_NO.
namespace YN
{
MSG_YN* OVERWRITE_OPTIONS();
}

/// Errors.
namespace E
{
MSG_E* FILE_IO_ERROR(const std::string& file);
MSG_E* SETTINGS_CHECK_ERROR(const std::string& reason);
MSG_E* INTEGRITY_CHECK_ERROR(const std::string& reason);
MSG_E* CORRUPTED_FILE(const std::string& file);
MSG_E* CORRUPTED_FILE_WITH_REASON(const std::string& file, const std::string& reason);
MSG_E* CAN_NOT_GENERATE(const std::string& file);
MSG_E* OUTPUT_DIRECTORY_DOES_NOT_EXISTS(const std::string& directory);
MSG_E* GENERIC_ERROR(const std::string& file, const std::string& reason);
MSG_E* FILE_MISSING(const std::string& file);
MSG_E* INVALID_FILE(const std::string& file);
MSG_E* RIM_UNSUPPORTED_DEVICE(const std::string& device);
} // namespace E

/// Information. A suppressed id gives a message that reports nothing.
namespace I
{
MSG_I* VEK_SUCCESSFULLY_SAVED(const std::string& file);
MSG_I* AUTO_POPULATE_SHARED_PROPERTIES(const std::string& source, const std::string& target);
MSG_I* AUTO_INHERIT_SHARED_PROPERTIES(const std::string& source, const std::string& target);
} // namespace I

/// Warnings. A suppressed id gives a message that reports nothing.
namespace W
{
MSG_W* FILE_TYPE_DOES_NOT_SUPPORT_VEK_SETUP_FILE(const std::string& file_type);
MSG_W* CONVERT_AEK_TO_JAM_JBC();
} // namespace W

/// A debug message with the subject "VEK_COMMON", from a printf format; the second form has level 2.
MSG_D* DEBUG_MSG(MSG_D_LEVEL level, const char* format, ...) __attribute__((format(printf, 2, 3)));
MSG_D* DEBUG_MSG(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// One message as it is defined.
struct DEFINITION {
    std::uint32_t id;
    const char* text; ///< text, "/", letters of the kind and symbolic id, as MSG_BASE::fill_args takes it
};

/// All 21 messages.
extern const std::array<DEFINITION, 21> definitions;

} // namespace MSG_VEK

/// Writes a debug line with the subject "VEK" at once.
void msg_vdebug_impl(MSG_D_LEVEL level, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// The ids that the process knows of, with their types. Output and questions are not registered.
extern const std::array<std::uint32_t, 16> vek_msg_ids;
extern const std::array<MSG_POST_TYPE, 16> vek_msg_id_types;
extern const MSG_ID_REGISTRAR vek_msg_id_registrar;

/// Reports a message at once and releases it; the result is that of report().
int vek_report(MSG_BASE* message);

#endif
