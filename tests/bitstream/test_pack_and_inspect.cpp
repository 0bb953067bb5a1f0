#include "bitstream_test_support.h"
#include "configuration_stream.h"
#include "inspect.h"
#include "pack.h"
#include "sample.h"
#include "scheme_words.h"
#include "temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <lz4.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace
{

class pack_and_inspect : public testing::Test
{
protected:
    pack_and_inspect()
    {
        m_request.device = some_fpga().name;
        m_request.output_path = m_directory / "out.sof";
    }

    std::string add(const std::string& name, const BYTES& bytes)
    {
        write_file(m_directory / name, bytes);
        return m_directory / name;
    }

    std::string refusal()
    {
        std::string message;
        EXPECT_FALSE(pack_bitstream(m_request, message));
        return message;
    }

    BITSTREAM_FACTS inspect_output()
    {
        BITSTREAM_FACTS facts;
        std::string message;
        EXPECT_TRUE(inspect_bitstream(m_request.output_path, facts, message)) << message;
        EXPECT_TRUE(verify_file(m_request.output_path, message)) << message;
        return facts;
    }

    BYTES extract(const std::string& path, EXTRACTED_PART part)
    {
        std::string message;
        EXPECT_TRUE(extract_from_file(path, part, m_directory / "extracted", message)) << message;
        return read_file(m_directory / "extracted");
    }

    TEMPORARY_DIRECTORY m_directory;
    PACK_REQUEST m_request;
    std::string m_message;
};

TEST_F(pack_and_inspect, raw_images_of_any_size_become_a_bitstream)
{
    std::mt19937 random(1);
    for (const std::size_t size : {1U, 135100U, 162205U, 582369U}) {
        const BYTES core = redundant_bytes(random, size);
        m_request.core_path = add("core.bin", core);
        ASSERT_TRUE(pack_bitstream(m_request, m_message)) << m_message;
        const BITSTREAM_FACTS facts = inspect_output();
        EXPECT_EQ(facts.kind, BITSTREAM_KIND::SOF);
        EXPECT_EQ(facts.device.name, some_fpga().name);
        EXPECT_EQ(facts.device.idcode, some_fpga().idcode);
        EXPECT_TRUE(facts.device_known);
        EXPECT_FALSE(facts.scheme.has_value());
        EXPECT_EQ(extract(m_request.output_path, EXTRACTED_PART::CORE), core);
        EXPECT_EQ(extract(m_request.output_path, EXTRACTED_PART::IMAGE), core);
    }
}

TEST_F(pack_and_inspect, everything_asked_for_gets_into_the_file)
{
    m_request.core_path = add("core.bin", {1, 2, 3});
    m_request.periphery_path = add("periphery.bin", {4, 5});
    m_request.firmware_path = add("firmware.bin", {6});
    m_request.bootloader_path = add("boot.bin", {7, 8});
    m_request.scheme = "asx4";
    m_request.options = {{"sof_option_encryption", true}};
    m_request.option_block.emplace();
    m_request.option_block->watchdog_value = 99;
    ASSERT_TRUE(pack_bitstream(m_request, m_message)) << m_message;
    const BITSTREAM_FACTS facts = inspect_output();
    EXPECT_EQ(facts.scheme, 13U);
    EXPECT_EQ(facts.options, m_request.options);
    EXPECT_NE(facts.option_word, 0U);
    EXPECT_EQ(facts.option_block.watchdog_value, 99U);
    std::vector<std::string> descriptions;
    for (const BITSTREAM_SECTION& section : facts.sections)
        descriptions.push_back(section_description(section.tag));
    EXPECT_EQ(descriptions, (std::vector<std::string>{"device record", "scheme record", "options record",
                                                      "on-chip option block", "periphery data", "core data",
                                                      "firmware", "bootloader", "digest"}));
    EXPECT_THAT(facts.digest, testing::MatchesRegex("[0-9a-f]{64}"));
    EXPECT_EQ(extract(m_request.output_path, EXTRACTED_PART::PERIPHERY), (BYTES{4, 5}));
    EXPECT_EQ(extract(m_request.output_path, EXTRACTED_PART::IMAGE), (BYTES{4, 5, 1, 2, 3}));
}

TEST_F(pack_and_inspect, regions_make_a_partial_bitstream)
{
    m_request.core_path = add("core.bin", {1, 2, 3});
    m_request.regions = {{"one", 10, 1}, {"two", 20, 2}};
    ASSERT_TRUE(pack_bitstream(m_request, m_message)) << m_message;
    const BITSTREAM_FACTS facts = inspect_output();
    EXPECT_EQ(facts.kind, BITSTREAM_KIND::PMSF);
    EXPECT_EQ(facts.regions, m_request.regions);

    m_request.regions = {{"far", some_fpga().core_bytes, 3}};
    EXPECT_EQ(refusal(), "Region far leaves the core configuration memory of " + some_fpga().name +
                             ", which has " + std::to_string(some_fpga().core_bytes) + " bytes.");
    m_request.regions = {{"a b", 0, 3}};
    EXPECT_EQ(refusal(),
              "\"a b\" cannot name a region; a name has 1 to 64 letters, digits, \"-\", \"_\" and \".\".");
}

TEST_F(pack_and_inspect, the_device_may_be_named_in_any_case)
{
    m_request.core_path = add("core.bin", {1});
    for (char& c : m_request.device)
        c = static_cast<char>(std::tolower(c));
    ASSERT_TRUE(pack_bitstream(m_request, m_message)) << m_message;
    EXPECT_EQ(inspect_output().device.name, some_fpga().name);
}

TEST_F(pack_and_inspect, the_image_may_fill_the_device_and_no_more)
{
    const std::uint32_t capacity = some_fpga().core_bytes;
    m_request.core_path = add("core.bin", BYTES(capacity));
    EXPECT_TRUE(pack_bitstream(m_request, m_message)) << m_message;
    m_request.core_path = add("large.bin", BYTES(capacity + 1));
    EXPECT_EQ(refusal(), m_directory / "large.bin" + " has " + std::to_string(capacity + 1) +
                             " bytes, but the core configuration memory of " + some_fpga().name +
                             " has room for " + std::to_string(capacity) + ".");
    m_request.core_path = add("core.bin", {1});
    m_request.periphery_path = add("periphery.bin", BYTES(some_fpga().periphery_bytes + 1));
    EXPECT_THAT(refusal(),
                HasSubstr("the periphery configuration memory of " + some_fpga().name + " has room for "));
}

TEST_F(pack_and_inspect, a_refused_pack_leaves_the_old_output)
{
    add("out.sof", {42});
    m_request.core_path = add("core.bin", {});
    EXPECT_EQ(refusal(),
              m_directory / "core.bin" + " is empty; a configuration image has at least one byte.");
    EXPECT_EQ(read_file(m_request.output_path), BYTES{42});
}

TEST_F(pack_and_inspect, requests_that_cannot_be_met_are_refused)
{
    m_request.core_path = add("core.bin", {1});
    m_request.device = "XX";
    EXPECT_EQ(refusal(), "Device XX is not in the device database; \"list devices\" names those that are.");
    m_request.device = some_fpga().name;
    m_request.scheme = "fast";
    EXPECT_THAT(refusal(), StartsWith("\"fast\" is no configuration scheme; the schemes are PS PSX2 "));
    EXPECT_THAT(refusal(), testing::EndsWith(" SDMMCX8."));
    m_request.scheme.clear();
    m_request.core_path = m_directory / "none.bin";
    EXPECT_EQ(refusal(), m_directory / "none.bin" + " cannot be opened: no such file.");
    m_request.core_path = add("out.sof", {1, 2});
    EXPECT_EQ(refusal(),
              m_request.output_path + " is an input and cannot be the output too; choose another name.");
    EXPECT_EQ(read_file(m_request.output_path), (BYTES{1, 2}));
    m_request.core_path = add("core.bin", {1});
    m_request.output_path = m_directory / "missing/out.sof";
    EXPECT_THAT(refusal(), StartsWith(m_request.output_path + " cannot be written: "));
}

TEST_F(pack_and_inspect, a_flash_device_takes_no_bitstream)
{
    m_request.core_path = add("core.bin", {1});
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list())
        if (device->device_class == DEV_CLASS_CONFIG_FLASH)
            m_request.device = device->name;
    EXPECT_EQ(refusal(), "Device " + m_request.device + " is a flash device; a bitstream is for an FPGA.");
}

TEST_F(pack_and_inspect, every_scheme_has_a_word_and_takes_it)
{
    std::vector<std::string> words = scheme_words();
    ASSERT_EQ(words.size(), 25U);
    for (std::uint32_t number = 0; number < words.size(); ++number) {
        PGMIO_CONFIG_SCHEME scheme = PGMIO_CONFIG_SCHEME_ILLEGAL;
        EXPECT_TRUE(scheme_from_word(words[number], scheme));
        EXPECT_EQ(scheme, number);
        EXPECT_EQ(scheme_to_word(scheme), words[number]);
        EXPECT_TRUE(scheme_from_word(std::to_string(number), scheme));
        EXPECT_EQ(scheme, number);
    }
    std::sort(words.begin(), words.end());
    EXPECT_EQ(std::unique(words.begin(), words.end()), words.end());
    PGMIO_CONFIG_SCHEME scheme = PGMIO_CONFIG_SCHEME_PS;
    EXPECT_FALSE(scheme_from_word("25", scheme));
    EXPECT_FALSE(scheme_from_word("", scheme));
    EXPECT_EQ(scheme_to_word(PGMIO_CONFIG_SCHEME_ILLEGAL), "any");
}

TEST_F(pack_and_inspect, a_sample_has_the_size_of_its_device)
{
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        if (device->device_class != DEV_CLASS_FPGA || device->core_bytes > 4'000'000)
            continue;
        ASSERT_TRUE(write_sample_bitstream(device->name, 1, "", m_request.output_path, m_message))
            << m_message;
        const BITSTREAM_FACTS facts = inspect_output();
        EXPECT_EQ(facts.device.name, device->name);
        for (const BITSTREAM_SECTION& section : facts.sections) {
            if (section.tag == SECTION_CORE) {
                EXPECT_EQ(section.length, device->core_bytes) << device->name;
            }
            if (section.tag == SECTION_PERIPHERY) {
                EXPECT_EQ(section.length, device->periphery_bytes) << device->name;
            }
        }
    }
}

TEST_F(pack_and_inspect, samples_carry_what_their_family_needs)
{
    const auto sample = [&](DEV_FAMILY_ENUM family, const std::string& scheme) {
        EXPECT_TRUE(
            write_sample_bitstream(fpga_of_family(family).name, 1, scheme, m_request.output_path, m_message))
            << m_message;
        return inspect_output();
    };
    const BITSTREAM_FACTS on_chip = sample(DEV_FAMILY_ONCHIP_FLASH, "");
    EXPECT_EQ(on_chip.scheme, PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE);
    EXPECT_NE(on_chip.option_word, 0U);
    EXPECT_EQ(sample(DEV_FAMILY_ONCHIP_FLASH, "DUAL_COMPRESSED_IMAGES").scheme, 19U);
    const BITSTREAM_FACTS secure = sample(DEV_FAMILY_FELDSPAR, "");
    EXPECT_EQ(secure.options, (BITSTREAM_OPTIONS{{"sof_option_encryption", false}}));
    EXPECT_FALSE(secure.scheme.has_value());
}

TEST_F(pack_and_inspect, samples_are_deterministic_by_device_and_seed)
{
    const std::string name = fpga_of_family(DEV_FAMILY_ONCHIP_FLASH).name;
    const auto sample = [&](const std::string& device, std::uint64_t seed) {
        EXPECT_TRUE(write_sample_bitstream(device, seed, "", m_request.output_path, m_message)) << m_message;
        return extract(m_request.output_path, EXTRACTED_PART::CORE);
    };
    const BYTES first = sample(name, 1);
    EXPECT_EQ(first, sample(name, 1));
    EXPECT_NE(first, sample(name, 2));
    EXPECT_FALSE(write_sample_bitstream("XX", 1, "", m_request.output_path, m_message));
    EXPECT_EQ(m_message, "Device XX is not in the device database; \"list devices\" names those that are.");
}

TEST_F(pack_and_inspect, sample_data_is_as_redundant_as_configuration_data)
{
    const BYTES data = bytes_of(SAMPLE_SOURCE(3, 8 * 1024 * 1024));
    std::vector<char> compressed(static_cast<std::size_t>(LZ4_compressBound(static_cast<int>(data.size()))));
    const int size = LZ4_compress_default(reinterpret_cast<const char*>(data.data()), compressed.data(),
                                          static_cast<int>(data.size()), static_cast<int>(compressed.size()));
    EXPECT_GT(size, static_cast<int>(data.size() / 10));
    EXPECT_LT(size, static_cast<int>(data.size() / 2));
    const auto zeros = static_cast<std::size_t>(std::count(data.begin(), data.end(), 0));
    EXPECT_GT(zeros, data.size() / 3);
    EXPECT_LT(zeros, data.size() / 10 * 9);
}

TEST_F(pack_and_inspect, sample_data_does_not_depend_on_how_it_is_read)
{
    const SAMPLE_SOURCE source(5, 100001);
    const BYTES whole = bytes_of(source);
    std::mt19937 random(2);
    for (int round = 0; round < 500; ++round) {
        const std::size_t offset = random() % whole.size();
        BYTES part(std::min<std::size_t>(random() % 70000, whole.size() - offset));
        ASSERT_TRUE(source.read(offset, part, m_message)) << m_message;
        ASSERT_TRUE(
            std::equal(part.begin(), part.end(), whole.begin() + static_cast<std::ptrdiff_t>(offset)));
    }
    BYTES beyond(2);
    EXPECT_FALSE(source.read(100000, beyond, m_message));
    EXPECT_FALSE(source.read(UINT64_MAX, beyond, m_message));
}

TEST_F(pack_and_inspect, streams_are_inspected_and_taken_apart_too)
{
    const std::string sof = add("a.sof", make_file(full_content()));
    const auto stream = build_configuration_stream({{.path = sof}, {.path = sof, .compression = true}},
                                                   m_directory.path(), m_message);
    ASSERT_NE(stream, nullptr) << m_message;
    const std::string rbf = add("a.rbf", bytes_of(*stream));
    INSPECTED_KIND kind = INSPECTED_KIND::OTHER;
    EXPECT_TRUE(identify_file(rbf, kind, m_message)) << m_message;
    EXPECT_EQ(kind, INSPECTED_KIND::STREAM);
    EXPECT_TRUE(identify_file(sof, kind, m_message)) << m_message;
    EXPECT_EQ(kind, INSPECTED_KIND::BITSTREAM);
    STREAM_FACTS facts;
    EXPECT_TRUE(inspect_stream(rbf, facts, m_message)) << m_message;
    EXPECT_EQ(facts.images.size(), 2U);
    EXPECT_TRUE(verify_file(rbf, m_message)) << m_message;
    BYTES twice = full_content().data[1].second;
    twice.insert(twice.end(), twice.begin(), twice.begin() + 5000);
    EXPECT_EQ(extract(rbf, EXTRACTED_PART::CORE), twice);
    EXPECT_EQ(extract(rbf, EXTRACTED_PART::IMAGE).size(), 12000U);
}

TEST_F(pack_and_inspect, damage_is_reported_with_file_and_place)
{
    BYTES file = make_file(full_content());
    file[file.size() - 33] ^= 1;
    const std::string sof = add("a.sof", file);
    EXPECT_FALSE(verify_file(sof, m_message));
    EXPECT_THAT(m_message,
                StartsWith(sof + " is damaged: the checksum of the bootloader (section HPSB at offset "));
    EXPECT_FALSE(extract_from_file(sof, EXTRACTED_PART::CORE, m_directory / "extracted", m_message));
    const std::string rbf = add("a.rbf", {0xF1, 0x9A, 0x3C, 0x5E});
    EXPECT_FALSE(verify_file(rbf, m_message));
    EXPECT_EQ(
        m_message,
        rbf + ": The configuration stream is damaged at offset 4: the stream ends without an end packet.");
    EXPECT_FALSE(extract_from_file(rbf, EXTRACTED_PART::CORE, m_directory / "extracted", m_message));
    EXPECT_EQ(m_directory.entries(), (std::vector<std::string>{"a.rbf", "a.sof"}));
}

TEST_F(pack_and_inspect, files_of_other_kinds_are_told_apart)
{
    const std::string other = add("a.txt", {'h', 'i'});
    INSPECTED_KIND kind = INSPECTED_KIND::STREAM;
    EXPECT_TRUE(identify_file(other, kind, m_message)) << m_message;
    EXPECT_EQ(kind, INSPECTED_KIND::OTHER);
    EXPECT_FALSE(verify_file(other, m_message));
    EXPECT_EQ(m_message, other + " is neither a bitstream file nor a configuration stream.");
    EXPECT_FALSE(extract_from_file(other, EXTRACTED_PART::CORE, m_directory / "extracted", m_message));
    EXPECT_EQ(m_message, other + " is neither a bitstream file nor a configuration stream.");
    EXPECT_FALSE(identify_file(m_directory / "none", kind, m_message));
    EXPECT_EQ(m_message, m_directory / "none" + " cannot be opened: no such file.");
}

TEST_F(pack_and_inspect, extraction_refuses_what_it_cannot_do)
{
    const std::string sof = add("a.sof", make_file(small_content({1})));
    EXPECT_FALSE(extract_from_file(sof, EXTRACTED_PART::PERIPHERY, m_directory / "extracted", m_message));
    EXPECT_EQ(m_message, sof + " holds no periphery data.");
    EXPECT_FALSE(extract_from_file(sof, EXTRACTED_PART::CORE, sof, m_message));
    EXPECT_EQ(m_message, sof + " is the input and cannot be the output too; choose another name.");
    EXPECT_TRUE(verify_file(sof, m_message)) << m_message;
}

} // namespace
