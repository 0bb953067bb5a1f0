#include "bitstream_test_support.h"
#include "msg_service.h"
#include "pgmio_device_file_reader.h"
#include "temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

class device_file_reader : public testing::Test
{
protected:
    std::string add(const std::string& name, const TEST_CONTENT& content)
    {
        write_file(m_directory / name, make_file(content));
        return m_directory / name;
    }

    TEMPORARY_DIRECTORY m_directory;
    std::vector<std::string> m_reported;
    MSG_SINK_SCOPE m_sink{[this](const MSG_RECORD& record) { m_reported.push_back(record.text); }};
};

TEST_F(device_file_reader, gives_bit_field_device_and_size)
{
    long bits = 0;
    PGMIO_BITFIELD* bitfield = nullptr;
    const PGM_DEVICE* device = nullptr;
    ASSERT_TRUE(PGMIO_DEVICE_FILE_READER::read_file(add("a.sof", full_content()), &bits, &bitfield, &device));
    const std::unique_ptr<PGMIO_BITFIELD> owned(bitfield);
    EXPECT_EQ(bits, 6000 * 8);
    EXPECT_EQ(device, &some_fpga());
    ASSERT_NE(bitfield, nullptr);
    EXPECT_EQ(bitfield->get_config_scheme(), PGMIO_CONFIG_SCHEME_AS_X4);
    EXPECT_TRUE(bitfield->has_option_block());
    DSET_OTI_DEV_OPTIONS_INFO options;
    EXPECT_TRUE(bitfield->read_oti_icb_data_for_sof(&options));
    EXPECT_EQ(options.power_on_scheme, 3U);
    EXPECT_TRUE(options.fallback_enabled);
    EXPECT_FALSE(options.user_ios_weak_pullup);
    EXPECT_TRUE(m_reported.empty());
}

TEST_F(device_file_reader, a_file_without_option_block_leaves_the_options_alone)
{
    PGMIO_BITFIELD* bitfield = nullptr;
    ASSERT_TRUE(
        PGMIO_DEVICE_FILE_READER::read_file(add("a.sof", small_content({1})), nullptr, &bitfield, nullptr));
    const std::unique_ptr<PGMIO_BITFIELD> owned(bitfield);
    EXPECT_EQ(bitfield->get_config_scheme(), PGMIO_CONFIG_SCHEME_ILLEGAL);
    EXPECT_FALSE(bitfield->has_option_block());
    DSET_OTI_DEV_OPTIONS_INFO options;
    options.power_on_scheme = 77;
    EXPECT_FALSE(bitfield->read_oti_icb_data_for_sof(&options));
    EXPECT_EQ(options.power_on_scheme, 77U);
}

TEST_F(device_file_reader, gives_the_regions_of_a_partial_bitstream)
{
    TEST_CONTENT content = small_content({1, 2});
    content.kind = BITSTREAM_KIND::PMSF;
    content.regions = {{"one", 5, 2}};
    std::vector<PGMIO_REGION> regions;
    ASSERT_TRUE(PGMIO_DEVICE_FILE_READER::read_file(add("a.pmsf", content), nullptr, nullptr, nullptr, "",
                                                    nullptr, false, &regions));
    ASSERT_EQ(regions.size(), 1U);
    EXPECT_EQ(regions[0].name, "one");
    EXPECT_EQ(regions[0].offset, 5U);
    EXPECT_EQ(regions[0].length, 2U);
}

TEST_F(device_file_reader, a_failure_is_reported_once_and_writes_no_output)
{
    long bits = 5;
    PGMIO_BITFIELD* bitfield = nullptr;
    const PGM_DEVICE* device = nullptr;
    EXPECT_FALSE(PGMIO_DEVICE_FILE_READER::read_file(m_directory / "none.sof", &bits, &bitfield, &device));
    EXPECT_EQ(bits, 5);
    EXPECT_EQ(bitfield, nullptr);
    EXPECT_EQ(device, nullptr);
    EXPECT_EQ(m_reported,
              std::vector<std::string>{m_directory / "none.sof" + " cannot be opened: no such file."});
}

TEST_F(device_file_reader, a_failure_goes_to_the_message_when_there_is_one)
{
    std::string message;
    EXPECT_FALSE(PGMIO_DEVICE_FILE_READER::read_file(m_directory / "none.sof", nullptr, nullptr, nullptr,
                                                     "shown.sof", &message));
    EXPECT_EQ(message, "shown.sof cannot be opened: no such file.");
    EXPECT_TRUE(m_reported.empty());
    TEST_CONTENT content = full_content();
    content.device.name = "XX";
    EXPECT_FALSE(PGMIO_DEVICE_FILE_READER::read_file(add("a.sof", content), nullptr, nullptr, nullptr,
                                                     "shown.sof", &message));
    EXPECT_EQ(message, "shown.sof is for device XX, which is not in the device database.");
}

TEST_F(device_file_reader, contents_are_verified_on_request)
{
    BYTES file = make_file(full_content());
    file[file.size() - 33] ^= 1;
    write_file(m_directory / "a.sof", file);
    std::string message;
    EXPECT_TRUE(
        PGMIO_DEVICE_FILE_READER::read_file(m_directory / "a.sof", nullptr, nullptr, nullptr, "", &message));
    EXPECT_FALSE(PGMIO_DEVICE_FILE_READER::read_file(m_directory / "a.sof", nullptr, nullptr, nullptr, "",
                                                     &message, true));
    EXPECT_THAT(message, testing::HasSubstr(" is damaged: the checksum of the bootloader"));
}

TEST_F(device_file_reader, a_chain_element_tells_the_options_of_its_file)
{
    PGM_CHAIN_ELEMENT chain(&some_fpga());
    EXPECT_EQ(chain.get_device(), &some_fpga());
    chain.set_path(add("a.sof", full_content()));
    EXPECT_TRUE(PGM_CHAIN_ELEMENT::create_chain_element(&chain, true, nullptr, true, 0, false, false));
    EXPECT_EQ(chain.get_option_map(),
              (std::map<std::string, bool>{{"another_option", false}, {"sof_option_encryption", true}}));
    EXPECT_TRUE(PGM_CHAIN_ELEMENT::create_chain_element(&chain, true, nullptr, true, 0, true, true));
    EXPECT_EQ(chain.get_option_map(), (std::map<std::string, bool>{{"sof_option_encryption", true}}));
    EXPECT_TRUE(PGM_CHAIN_ELEMENT::create_chain_element(&chain, false, nullptr, true, 0, false, false));
    EXPECT_TRUE(chain.get_option_map().empty());
}

TEST_F(device_file_reader, a_chain_element_refuses_a_file_that_does_not_fit)
{
    const PGM_DEVICE& other = fpga_of_family(DEV_FAMILY_ZIRCON);
    PGM_CHAIN_ELEMENT chain(&other);
    const std::string path = add("a.sof", full_content());
    chain.set_path(path);
    std::string message;
    EXPECT_FALSE(PGM_CHAIN_ELEMENT::create_chain_element(&chain, true, &message, true, 0, false, false));
    EXPECT_EQ(message, path + " is for device " + some_fpga().name + ", not for " + other.name + ".");
    EXPECT_TRUE(chain.get_option_map().empty());
    EXPECT_TRUE(PGM_CHAIN_ELEMENT::create_chain_element(&chain, true, &message, false, 0, false, false));
    EXPECT_EQ(chain.get_option_map().size(), 2U);
    EXPECT_FALSE(PGM_CHAIN_ELEMENT::create_chain_element(&chain, true, &message, false, 1, false, false));
    EXPECT_EQ(message, path + " holds one image, not 2.");
    chain.set_path(m_directory / "none.sof");
    EXPECT_FALSE(PGM_CHAIN_ELEMENT::create_chain_element(&chain, true, nullptr, true, 0, false, false));
    EXPECT_TRUE(chain.get_option_map().empty());
    EXPECT_TRUE(m_reported.empty());
}

} // namespace
