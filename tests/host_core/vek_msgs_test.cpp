#include "internal_error_trap.h"
#include "msg_service.h"
#include "vek_msgs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>

namespace
{

struct EXPECTED {
    MSG_BASE* message;
    std::uint32_t id;
    MSG_SEVERITY severity;
    const char* symbolic_id;
    const char* text;
};

TEST(vek_messages, have_their_ids_kinds_and_texts_to_the_letter)
{
    const EXPECTED rows[] = {
        {MSG_VEK::O::MULTIPLE_BITSTREAMS_UNSUPPORTED("A"), 19828, MSG_SEVERITY::OUTPUT,
         "VEK_MULTIPLE_BITSTREAMS_UNSUPPORTED",
         "The compiled configuration mode A does not support multiple bitstreams"},
        {MSG_VEK::O::MIXED_FAMILIES_BITSTREAMS_UNSUPPORTED("A", "B", "C"), 20234, MSG_SEVERITY::OUTPUT,
         "VEK_MIXED_FAMILIES_BITSTREAMS_UNSUPPORTED",
         "Failed to add A that contains bitstream of B device. The existing SOF contains bitstream of C "
         "device "
         "and it does not support cross family cascaded bitstream."},
        {MSG_VEK::O::DEVICE_DOES_NOT_SUPPORT_MULTIPLE_BITSTREAMS("A", "B"), 20652, MSG_SEVERITY::OUTPUT,
         "VEK_DEVICE_DOES_NOT_SUPPORT_MULTIPLE_BITSTREAMS",
         "Failed to add A. The target device B does not support programming files with multiple bitstreams."},
        {MSG_VEK::O::FILE_PRECHECK_FAILED("A"), 20653, MSG_SEVERITY::OUTPUT, "VEK_FILE_PRECHECK_FAILED", "A"},
        {MSG_VEK::YN::OVERWRITE_OPTIONS(), 19880, MSG_SEVERITY::QUESTION, "VEK_OVERWRITE_OPTIONS",
         "Option setting in SOF file is different with current option setting. Do you want to overwrite it?"},
        {MSG_VEK::E::FILE_IO_ERROR("A"), 19478, MSG_SEVERITY::ERROR, "VEK_FILE_IO_ERROR",
         "Can't save or open file A"},
        {MSG_VEK::E::SETTINGS_CHECK_ERROR("A"), 19516, MSG_SEVERITY::ERROR, "VEK_SETTINGS_CHECK_ERROR",
         "Detected Imagewright settings error: A"},
        {MSG_VEK::E::INTEGRITY_CHECK_ERROR("A"), 20715, MSG_SEVERITY::ERROR, "VEK_INTEGRITY_CHECK_ERROR",
         "The programming file integrity check failed. A"},
        {MSG_VEK::E::CORRUPTED_FILE("A"), 19495, MSG_SEVERITY::ERROR, "VEK_CORRUPTED_FILE",
         "File A is corrupted"},
        {MSG_VEK::E::CORRUPTED_FILE_WITH_REASON("A", "B"), 19504, MSG_SEVERITY::ERROR,
         "VEK_CORRUPTED_FILE_WITH_REASON", "File A is corrupted. B"},
        {MSG_VEK::E::CAN_NOT_GENERATE("A"), 19856, MSG_SEVERITY::ERROR, "VEK_CAN_NOT_GENERATE",
         "Cannot generate programming file A"},
        {MSG_VEK::E::OUTPUT_DIRECTORY_DOES_NOT_EXISTS("A"), 20760, MSG_SEVERITY::ERROR,
         "VEK_OUTPUT_DIRECTORY_DOES_NOT_EXISTS",
         "Output directory \"A\" doesn't exists. Please specify a valid output directory."},
        {MSG_VEK::E::GENERIC_ERROR("A", "B"), 20809, MSG_SEVERITY::ERROR, "VEK_GENERIC_ERROR",
         "Can't generate programming file A - B."},
        {MSG_VEK::E::FILE_MISSING("A"), 22054, MSG_SEVERITY::ERROR, "VEK_FILE_MISSING",
         "The A file does not exist."},
        {MSG_VEK::E::INVALID_FILE("A"), 22055, MSG_SEVERITY::ERROR, "VEK_INVALID_FILE",
         "A is an incorrect firmware file."},
        {MSG_VEK::E::RIM_UNSUPPORTED_DEVICE("A"), 22308, MSG_SEVERITY::ERROR, "VEK_RIM_UNSUPPORTED_DEVICE",
         "Device A does not support Reference Integrity Manifest (.rim) file generation."},
        {MSG_VEK::I::VEK_SUCCESSFULLY_SAVED("A"), 19515, MSG_SEVERITY::INFORMATION,
         "VEK_VEK_SUCCESSFULLY_SAVED", "Saved Imagewright Setup File A"},
        {MSG_VEK::I::AUTO_POPULATE_SHARED_PROPERTIES("A", "B"), 20232, MSG_SEVERITY::INFORMATION,
         "VEK_AUTO_POPULATE_SHARED_PROPERTIES",
         "Automatically pupolute latest signing settings from A to B."},
        {MSG_VEK::I::AUTO_INHERIT_SHARED_PROPERTIES("A", "B"), 20233, MSG_SEVERITY::INFORMATION,
         "VEK_AUTO_INHERIT_SHARED_PROPERTIES", "Automatically inherit signing settings from A to B."},
        {MSG_VEK::W::FILE_TYPE_DOES_NOT_SUPPORT_VEK_SETUP_FILE("A"), 19855, MSG_SEVERITY::WARNING,
         "VEK_FILE_TYPE_DOES_NOT_SUPPORT_VEK_SETUP_FILE",
         "Cannot generate Imagewright Setup File (.vek) for output file type A. The output file type can "
         "only "
         "be supported through the -c or --convert command option. Remove --save command option to avoid "
         "this "
         "warning."},
        {MSG_VEK::W::CONVERT_AEK_TO_JAM_JBC(), 21625, MSG_SEVERITY::WARNING, "VEK_CONVERT_AEK_TO_JAM_JBC",
         "When you convert the AES .aek file to .jam or .jbc format, the .jam or .jbc file contains the AES "
         "key in plaintext but obfuscated form. Consequently, you must protect the .jam or .jbc file when "
         "storing the AES key. You can do this by provisioning the AES key in a secure environment."},
    };
    std::set<std::uint32_t> ids;
    for (const EXPECTED& row : rows) {
        const std::unique_ptr<MSG_BASE> message(row.message);
        EXPECT_EQ(message->get_id(), row.id);
        EXPECT_EQ(message->severity(), row.severity) << row.symbolic_id;
        EXPECT_EQ(message->symbolic_id(), row.symbolic_id);
        EXPECT_EQ(message->text(), row.text);
        ids.insert(row.id);
    }
    EXPECT_EQ(ids.size(), MSG_VEK::definitions.size());
}

TEST(vek_messages, register_sixteen_ids_with_their_types_in_order)
{
    const std::pair<std::uint32_t, int> rows[] = {
        {19478, 0}, {19515, 1}, {19516, 0}, {20715, 0}, {19495, 0}, {19504, 0}, {19855, 2}, {19856, 0},
        {20232, 1}, {20233, 1}, {20760, 0}, {20809, 0}, {21625, 2}, {22054, 0}, {22055, 0}, {22308, 0},
    };
    std::vector<std::uint32_t> ids;
    for (std::size_t row = 0; row < vek_msg_ids.size(); ++row) {
        EXPECT_EQ(vek_msg_ids.at(row), rows[row].first);
        EXPECT_EQ(vek_msg_id_types.at(row), rows[row].second);
        MSG_POST_TYPE type = MSG_POST_ERROR;
        EXPECT_TRUE(MSG_ID_REGISTRAR::find(rows[row].first, type));
        EXPECT_EQ(type, rows[row].second);
        ids.push_back(rows[row].first);
    }
    EXPECT_EQ(MSG_ID_REGISTRAR::registered_ids(), ids);
}

TEST(vek_messages, leave_output_and_questions_unregistered)
{
    for (const std::uint32_t id : {19828u, 20234u, 20652u, 20653u, 19880u}) {
        MSG_POST_TYPE type = MSG_POST_ERROR;
        EXPECT_FALSE(MSG_ID_REGISTRAR::find(id, type)) << id;
    }
}

TEST(vek_messages, suppression_silences_information_and_warnings_alone)
{
    std::vector<std::uint32_t> told;
    const MSG_SINK_SCOPE sink([&told](const MSG_RECORD& record) { told.push_back(record.id); });
    MSG_INDEX& index = *MSG_INDEX::get_default_index();
    for (const std::uint32_t id : {19515u, 21625u, 19495u, 20653u}) {
        index.suppress(id);
    }
    vek_report(MSG_VEK::I::VEK_SUCCESSFULLY_SAVED("a.vek"));
    vek_report(MSG_VEK::W::CONVERT_AEK_TO_JAM_JBC());
    vek_report(MSG_VEK::E::CORRUPTED_FILE("a.vek"));
    vek_report(MSG_VEK::O::FILE_PRECHECK_FAILED("a.sof is not a bitstream file"));
    EXPECT_EQ(told, (std::vector<std::uint32_t>{19495, 20653}));
    const std::unique_ptr<MSG_I> silent(MSG_VEK::I::VEK_SUCCESSFULLY_SAVED("a.vek"));
    EXPECT_NE(dynamic_cast<MSG_I_NULL*>(silent.get()), nullptr);
    index.release_all();
    vek_report(MSG_VEK::I::VEK_SUCCESSFULLY_SAVED("a.vek"));
    EXPECT_EQ(told.back(), 19515u);
}

TEST(vek_messages, a_path_with_placeholders_stays_as_it_is)
{
    const std::unique_ptr<MSG_E> message(MSG_VEK::E::GENERIC_ERROR("%2!s!.rbf", "disk %1!s! full"));
    EXPECT_EQ(message->text(), "Can't generate programming file %2!s!.rbf - disk %1!s! full.");
}

TEST(vek_messages, debug_messages_carry_subject_and_level)
{
    const std::unique_ptr<MSG_D> plain(MSG_VEK::DEBUG_MSG("type %d", 5));
    EXPECT_EQ(plain->text(), "type 5");
    EXPECT_EQ(plain->subject(), "VEK_COMMON");
    EXPECT_EQ(plain->level(), MSG_D_LEVEL_2);
    const std::unique_ptr<MSG_D> detailed(MSG_VEK::DEBUG_MSG(MSG_D_LEVEL_3, "%s", "deep"));
    EXPECT_EQ(detailed->text(), "deep");
    EXPECT_EQ(detailed->level(), MSG_D_LEVEL_3);
}

TEST(vek_messages, direct_debug_output_has_the_subject_of_the_module)
{
    std::vector<std::string> told;
    const MSG_SINK_SCOPE sink(
        [&told](const MSG_RECORD& record) { told.push_back(record.symbolic_id + ": " + record.text); });
    msg_set_debug_level(1);
    msg_vdebug_impl(MSG_D_LEVEL_2, "hidden %d", 1);
    msg_set_debug_level(2);
    msg_vdebug_impl(MSG_D_LEVEL_2, "config_device.family = %d", 48);
    msg_set_debug_level(0);
    EXPECT_EQ(told, (std::vector<std::string>{"VEK: config_device.family = 48"}));
}

TEST(message_id_registrar, takes_tables_of_one_size_and_one_type_for_an_id)
{
    static const std::uint32_t ids[] = {900002, 900003};
    static const MSG_POST_TYPE types[] = {MSG_POST_WARNING, MSG_POST_ERROR};
    static const MSG_POST_TYPE other_types[] = {MSG_POST_WARNING, MSG_POST_INFORMATION};
    EXPECT_INTERNAL_ERROR(MSG_ID_REGISTRAR(ids, std::span(types).first(1)), "ids.size() == types.size()");
    const MSG_ID_REGISTRAR first(ids, types);
    EXPECT_INTERNAL_ERROR(MSG_ID_REGISTRAR(ids, other_types),
                          "message id 900003 is registered with one type");
    MSG_POST_TYPE type = MSG_POST_INFORMATION;
    EXPECT_TRUE(MSG_ID_REGISTRAR::find(900003, type));
    EXPECT_EQ(type, MSG_POST_ERROR);
}

TEST(message_id_registrar, keeps_an_id_until_its_last_registrar_goes)
{
    static const std::uint32_t ids[] = {900001};
    static const MSG_POST_TYPE types[] = {MSG_POST_WARNING};
    MSG_POST_TYPE type = MSG_POST_ERROR;
    {
        const MSG_ID_REGISTRAR first(ids, types);
        {
            const MSG_ID_REGISTRAR second(ids, types);
        }
        EXPECT_TRUE(MSG_ID_REGISTRAR::find(900001, type));
        EXPECT_EQ(type, MSG_POST_WARNING);
    }
    EXPECT_FALSE(MSG_ID_REGISTRAR::find(900001, type));
}

} // namespace
