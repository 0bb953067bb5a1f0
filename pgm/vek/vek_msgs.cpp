#include "vek_msgs.h"

#include <cstdarg>
#include <memory>

namespace MSG_VEK
{

// Odd wording in a text is part of it: users search for these messages by their words.
constexpr std::array<DEFINITION, 21> definitions = {{
    {19828, "The compiled configuration mode %1!s! does not support multiple bitstreams"
            "/OVEK_MULTIPLE_BITSTREAMS_UNSUPPORTED"},
    {20234,
     "Failed to add %1!s! that contains bitstream of %2!s! device. The existing SOF contains bitstream "
     "of %3!s! device and it does not support cross family cascaded bitstream."
     "/OVEK_MIXED_FAMILIES_BITSTREAMS_UNSUPPORTED"},
    {20652, "Failed to add %1!s!. The target device %2!s! does not support programming files with multiple "
            "bitstreams."
            "/OVEK_DEVICE_DOES_NOT_SUPPORT_MULTIPLE_BITSTREAMS"},
    {20653, "%1!s!"
            "/OVEK_FILE_PRECHECK_FAILED"},
    {19880,
     "Option setting in SOF file is different with current option setting. Do you want to overwrite it?"
     "/YNVEK_OVERWRITE_OPTIONS"},
    {19478, "Can't save or open file %1!s!"
            "/EVEK_FILE_IO_ERROR"},
    {19516, "Detected Imagewright settings error: %1!s!"
            "/EVEK_SETTINGS_CHECK_ERROR"},
    {20715, "The programming file integrity check failed. %1!s!"
            "/EVEK_INTEGRITY_CHECK_ERROR"},
    {19495, "File %1!s! is corrupted"
            "/EVEK_CORRUPTED_FILE"},
    {19504, "File %1!s! is corrupted. %2!s!"
            "/EVEK_CORRUPTED_FILE_WITH_REASON"},
    {19856, "Cannot generate programming file %1!s!"
            "/EVEK_CAN_NOT_GENERATE"},
    {20760, "Output directory \"%1!s!\" doesn't exists. Please specify a valid output directory."
            "/EVEK_OUTPUT_DIRECTORY_DOES_NOT_EXISTS"},
    {20809, "Can't generate programming file %1!s! - %2!s!."
            "/EVEK_GENERIC_ERROR"},
    {22054, "The %1!s! file does not exist."
            "/EVEK_FILE_MISSING"},
    {22055, "%1!s! is an incorrect firmware file."
            "/EVEK_INVALID_FILE"},
    {22308, "Device %1!s! does not support Reference Integrity Manifest (.rim) file generation."
            "/EVEK_RIM_UNSUPPORTED_DEVICE"},
    {19515, "Saved Imagewright Setup File %1!s!"
            "/IVEK_VEK_SUCCESSFULLY_SAVED"},
    {20232, "Automatically pupolute latest signing settings from %1!s! to %2!s!."
            "/IVEK_AUTO_POPULATE_SHARED_PROPERTIES"},
    {20233, "Automatically inherit signing settings from %1!s! to %2!s!."
            "/IVEK_AUTO_INHERIT_SHARED_PROPERTIES"},
    {19855, "Cannot generate Imagewright Setup File (.vek) for output file type %1!s!. The output file type "
            "can only be supported through the -c or --convert command option. Remove --save command option "
            "to avoid this warning."
            "/WVEK_FILE_TYPE_DOES_NOT_SUPPORT_VEK_SETUP_FILE"},
    {21625,
     "When you convert the AES .aek file to .jam or .jbc format, the .jam or .jbc file contains the AES "
     "key in plaintext but obfuscated form. Consequently, you must protect the .jam or .jbc file when "
     "storing the AES key. You can do this by provisioning the AES key in a secure environment."
     "/WVEK_CONVERT_AEK_TO_JAM_JBC"},
}};

namespace
{

/// The definition with this id; an id that no row has does not compile.
consteval const DEFINITION& defined(std::uint32_t id)
{
    std::size_t row = 0;
    while (definitions.at(row).id != id) {
        ++row;
    }
    return definitions[row];
}

template <class MESSAGE, class... TEXTS>
MESSAGE* build(const DEFINITION& definition, const TEXTS&... arguments)
{
    auto message = std::make_unique<MESSAGE>(nullptr);
    message->fill_args(definition.text, arguments.c_str()...);
    message->set_id(definition.id);
    return message.release();
}

template <class MESSAGE, class NULL_MESSAGE, class... TEXTS>
MESSAGE* build_unless_suppressed(const DEFINITION& definition, const TEXTS&... arguments)
{
    if (MSG_INDEX::get_default_index()->is_suppressed(definition.id)) {
        return new NULL_MESSAGE(nullptr);
    }
    return build<MESSAGE>(definition, arguments...);
}

MSG_D* build_debug(MSG_D_LEVEL level, const char* format, va_list arguments)
{
    auto message = std::make_unique<MSG_D>(nullptr);
    message->fill_args(format, arguments);
    message->set_subject("VEK_COMMON");
    message->set_level(level);
    return message.release();
}

} // namespace

MSG_O* O::MULTIPLE_BITSTREAMS_UNSUPPORTED(const std::string& configuration_mode)
{
    return build<MSG_O>(defined(19828), configuration_mode);
}

MSG_O* O::MIXED_FAMILIES_BITSTREAMS_UNSUPPORTED(const std::string& file, const std::string& family,
                                                const std::string& existing_family)
{
    return build<MSG_O>(defined(20234), file, family, existing_family);
}

MSG_O* O::DEVICE_DOES_NOT_SUPPORT_MULTIPLE_BITSTREAMS(const std::string& file, const std::string& device)
{
    return build<MSG_O>(defined(20652), file, device);
}

MSG_O* O::FILE_PRECHECK_FAILED(const std::string& reason)
{
    return build<MSG_O>(defined(20653), reason);
}

MSG_YN* YN::OVERWRITE_OPTIONS()
{
    return build<MSG_YN>(defined(19880));
}

MSG_E* E::FILE_IO_ERROR(const std::string& file)
{
    return build<MSG_E>(defined(19478), file);
}

MSG_E* E::SETTINGS_CHECK_ERROR(const std::string& reason)
{
    return build<MSG_E>(defined(19516), reason);
}

MSG_E* E::INTEGRITY_CHECK_ERROR(const std::string& reason)
{
    return build<MSG_E>(defined(20715), reason);
}

MSG_E* E::CORRUPTED_FILE(const std::string& file)
{
    return build<MSG_E>(defined(19495), file);
}

MSG_E* E::CORRUPTED_FILE_WITH_REASON(const std::string& file, const std::string& reason)
{
    return build<MSG_E>(defined(19504), file, reason);
}

MSG_E* E::CAN_NOT_GENERATE(const std::string& file)
{
    return build<MSG_E>(defined(19856), file);
}

MSG_E* E::OUTPUT_DIRECTORY_DOES_NOT_EXISTS(const std::string& directory)
{
    return build<MSG_E>(defined(20760), directory);
}

MSG_E* E::GENERIC_ERROR(const std::string& file, const std::string& reason)
{
    return build<MSG_E>(defined(20809), file, reason);
}

MSG_E* E::FILE_MISSING(const std::string& file)
{
    return build<MSG_E>(defined(22054), file);
}

MSG_E* E::INVALID_FILE(const std::string& file)
{
    return build<MSG_E>(defined(22055), file);
}

MSG_E* E::RIM_UNSUPPORTED_DEVICE(const std::string& device)
{
    return build<MSG_E>(defined(22308), device);
}

MSG_I* I::VEK_SUCCESSFULLY_SAVED(const std::string& file)
{
    return build_unless_suppressed<MSG_I, MSG_I_NULL>(defined(19515), file);
}

MSG_I* I::AUTO_POPULATE_SHARED_PROPERTIES(const std::string& source, const std::string& target)
{
    return build_unless_suppressed<MSG_I, MSG_I_NULL>(defined(20232), source, target);
}

MSG_I* I::AUTO_INHERIT_SHARED_PROPERTIES(const std::string& source, const std::string& target)
{
    return build_unless_suppressed<MSG_I, MSG_I_NULL>(defined(20233), source, target);
}

MSG_W* W::FILE_TYPE_DOES_NOT_SUPPORT_VEK_SETUP_FILE(const std::string& file_type)
{
    return build_unless_suppressed<MSG_W, MSG_W_NULL>(defined(19855), file_type);
}

MSG_W* W::CONVERT_AEK_TO_JAM_JBC()
{
    return build_unless_suppressed<MSG_W, MSG_W_NULL>(defined(21625));
}

MSG_D* DEBUG_MSG(MSG_D_LEVEL level, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    MSG_D* const message = build_debug(level, format, arguments);
    va_end(arguments);
    return message;
}

MSG_D* DEBUG_MSG(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    MSG_D* const message = build_debug(MSG_D_LEVEL_2, format, arguments);
    va_end(arguments);
    return message;
}

} // namespace MSG_VEK

const std::array<std::uint32_t, 16> vek_msg_ids = {
    19478, 19515, 19516, 20715, 19495, 19504, 19855, 19856,
    20232, 20233, 20760, 20809, 21625, 22054, 22055, 22308,
};

const std::array<MSG_POST_TYPE, 16> vek_msg_id_types = {
    MSG_POST_ERROR,       MSG_POST_INFORMATION, MSG_POST_ERROR,   MSG_POST_ERROR,
    MSG_POST_ERROR,       MSG_POST_ERROR,       MSG_POST_WARNING, MSG_POST_ERROR,
    MSG_POST_INFORMATION, MSG_POST_INFORMATION, MSG_POST_ERROR,   MSG_POST_ERROR,
    MSG_POST_WARNING,     MSG_POST_ERROR,       MSG_POST_ERROR,   MSG_POST_ERROR,
};

const MSG_ID_REGISTRAR vek_msg_id_registrar(vek_msg_ids, vek_msg_id_types);

void msg_vdebug_impl(MSG_D_LEVEL level, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    msg_local_vdebug("VEK", level, format, arguments);
    va_end(arguments);
}

int vek_report(MSG_BASE* message)
{
    const std::unique_ptr<MSG_BASE> released(message);
    return released->report(nullptr);
}
