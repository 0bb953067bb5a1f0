#include "msg_service.h"
#include "pgm_device.h"
#include "setup_builder.h"
#include "vek_util.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The messages that `work` reports, debug output left out.
std::vector<std::string> messages(const std::function<void()>& work)
{
    std::vector<std::string> texts;
    const MSG_SINK_SCOPE sink([&texts](const MSG_RECORD& record) {
        if (record.severity != MSG_SEVERITY::DEBUG) {
            texts.push_back(record.text);
        }
    });
    work();
    return texts;
}

} // namespace

TEST(vek_util, a_saved_setup_is_read_back)
{
    SETUP_BUILDER setup("ASX4");
    setup.flash("Flash_Device_1", "W25Q16JV");
    const std::string path = setup.path("setup.vek");
    EXPECT_THAT(messages([&] { EXPECT_TRUE(VEK_UTIL::save(&setup.document(), path)); }),
                ElementsAre("Saved Imagewright Setup File " + path));
    PGM_COMMON_XML_VEK_VEK* document = nullptr;
    EXPECT_THAT(messages([&] { EXPECT_TRUE(VEK_UTIL::parse(&document, path)); }), IsEmpty());
    const std::unique_ptr<PGM_COMMON_XML_VEK_VEK> owner(document);
    ASSERT_NE(document, nullptr);
    EXPECT_THAT(VEK_FILE_ASSISTANT::get_flash_device_ids(document), ElementsAre("Flash_Device_1"));
}

TEST(vek_util, a_setup_that_cannot_be_read_is_reported_and_changes_nothing)
{
    const TEMPORARY_DIRECTORY directory;
    PGM_COMMON_XML_VEK_VEK* document = nullptr;
    const std::string missing = directory / "missing.vek";
    EXPECT_THAT(messages([&] { EXPECT_FALSE(VEK_UTIL::parse(&document, missing)); }),
                ElementsAre("The " + missing + " file does not exist."));
    const std::string fifo = directory / "fifo.vek";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_THAT(messages([&] { EXPECT_FALSE(VEK_UTIL::parse(&document, fifo)); }),
                ElementsAre(HasSubstr("Can't save or open file " + fifo)));
    const std::string broken = directory / "broken.vek";
    write_file(broken, "<VEK><NOTHING/></VEK>");
    EXPECT_THAT(messages([&] { EXPECT_FALSE(VEK_UTIL::parse(&document, broken)); }),
                ElementsAre(HasSubstr("File " + broken + " is corrupted.")));
    EXPECT_EQ(document, nullptr);
}

TEST(vek_util, a_setup_that_cannot_be_written_is_reported)
{
    SETUP_BUILDER setup;
    EXPECT_THAT(
        messages([&] { EXPECT_FALSE(VEK_UTIL::save(&setup.document(), setup.path("none/setup.vek"))); }),
        ElementsAre(HasSubstr("Can't save or open file " + setup.path("none/setup.vek"))));
}

TEST(vek_util, the_family_is_that_of_the_bitstreams_or_what_the_rest_implies)
{
    SETUP_BUILDER empty("PS");
    EXPECT_EQ(VEK_UTIL::get_family(&empty.document()), DEV_FAMILY_NONE);
    EXPECT_EQ(VEK_UTIL::get_family(&SETUP_BUILDER("INTERNAL").document()), DEV_FAMILY_GYPSUM);
    empty.set(VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "CA3M050"}});
    EXPECT_EQ(VEK_UTIL::get_family(&empty.document()), DEV_FAMILY_CALCITE);
    empty.bitstream("Bitstream_1");
    EXPECT_EQ(VEK_UTIL::get_family(&empty.document()), DEV_FAMILY_BASALT);
}

TEST(vek_util, the_precheck_finds_the_device_or_says_what_is_wrong)
{
    SETUP_BUILDER setup;
    const std::string path = setup.bitstream("Bitstream_1");
    const PGM_DEVICE* device = nullptr;
    std::string name;
    std::string message;
    EXPECT_TRUE(VEK_UTIL::precheck_input_file(FIO_PATH(path), &device, name, message, true));
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->family, DEV_FAMILY_BASALT);
    EXPECT_EQ(name, "BS1L15");
    EXPECT_FALSE(
        VEK_UTIL::precheck_input_file(FIO_PATH(setup.path("top.sof")), &device, name, message, true));
    EXPECT_THAT(message, HasSubstr("top.sof cannot be opened"));
}

TEST(vek_util, boot_information_needs_firmware_of_a_secure_family_that_fits)
{
    SETUP_BUILDER setup("ASX4");
    std::string message;
    EXPECT_FALSE(VEK_UTIL::check_boot_info(setup.path("none.sof"), message));
    EXPECT_NE(message, "");
    const std::string basalt = setup.bitstream("B1");
    EXPECT_FALSE(VEK_UTIL::check_boot_info(basalt, message));
    EXPECT_THAT(message, HasSubstr("is for the family Basalt, which has no boot information"));
    SMALL_BITSTREAM secure;
    secure.device = "ZR9A012";
    EXPECT_FALSE(VEK_UTIL::check_boot_info(setup.bitstream("B2", secure), message));
    EXPECT_THAT(message, HasSubstr("brings no firmware"));
    secure.firmware = 0x200000 - 128;
    EXPECT_TRUE(VEK_UTIL::check_boot_info(setup.bitstream("B3", secure), message));
    ++secure.firmware;
    EXPECT_FALSE(VEK_UTIL::check_boot_info(setup.bitstream("B4", secure), message));
    EXPECT_THAT(message, HasSubstr("has room for 2097024"));
}

TEST(vek_util, the_partition_rules_answer_through_the_service)
{
    const auto mode = PGMIO_CONFIG_SCHEME_AS_X4;
    EXPECT_FALSE(VEK_UTIL::partition_has_page("BOOT_INFO", mode, DEV_FAMILY_ZIRCON, DEV_DEVICE_NONE, true,
                                              true, FIO_SOF_FILE));
    EXPECT_TRUE(VEK_UTIL::partition_has_page("P1", mode, DEV_FAMILY_ZIRCON, DEV_DEVICE_NONE, true, true,
                                             FIO_SOF_FILE));
    EXPECT_FALSE(VEK_UTIL::partition_is_editable("SPT0", mode, DEV_FAMILY_ZIRCON, DEV_DEVICE_NONE, true, true,
                                                 FIO_SOF_FILE));
    EXPECT_FALSE(VEK_UTIL::partition_is_removable("FACTORY_IMAGE", mode, DEV_FAMILY_ZIRCON, DEV_DEVICE_NONE,
                                                  true, true, FIO_SOF_FILE));
    unsigned mode_mask_a = 0;
    unsigned mode_mask_b = 0;
    unsigned types = 0;
    VEK_UTIL::get_family_pcf_info(DEV_FAMILY_BASALT, DEV_DEVICE_NONE, mode_mask_a, mode_mask_b, types);
    EXPECT_NE(mode_mask_a & 1U << PGMIO_CONFIG_SCHEME_PS, 0U);
    EXPECT_NE(types & 1U << VEK_RBF_FILE_TYPE, 0U);
}

TEST(vek_util, generation_through_the_service_writes_the_files)
{
    SETUP_BUILDER setup("PS");
    setup.bitstream("Bitstream_1");
    setup.output("RBF", {"Bitstream_1"});
    EXPECT_TRUE(VEK_UTIL::generate(&setup.document()));
    EXPECT_TRUE(std::filesystem::exists(setup.path("out.rbf")));
}
