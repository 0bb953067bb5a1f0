#include "bitstream_test_support.h"
#include "internal_error_trap.h"
#include "temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace
{

BYTES section_bytes(const BITSTREAM_FILE& file, const SECTION_TAG& tag)
{
    const auto section = file.section(tag);
    return section ? bytes_of(*section) : BYTES{};
}

std::string refusal(const BYTES& bytes)
{
    std::string message;
    EXPECT_EQ(open_bytes(bytes, message), nullptr);
    return message;
}

/// The sentence with which opening or verifying refuses the bytes; empty when neither does.
std::string open_and_verify(const BYTES& bytes)
{
    std::string message;
    const auto file = open_bytes(bytes, message);
    if (file && file->verify(message))
        return {};
    return message;
}

TEST(bitstream_container, gives_back_everything_that_was_put_in)
{
    const TEST_CONTENT content = full_content();
    std::string message;
    const auto file = open_bytes(make_file(content), message);
    ASSERT_NE(file, nullptr) << message;
    EXPECT_EQ(file->kind(), BITSTREAM_KIND::SOF);
    EXPECT_EQ(file->device(), content.device);
    EXPECT_EQ(file->scheme(), content.scheme);
    EXPECT_EQ(file->options(), content.options);
    for (const auto& [tag, bytes] : content.data)
        EXPECT_EQ(section_bytes(*file, tag), bytes);
    EXPECT_TRUE(file->verify(message)) << message;

    const DSET_OTI_DEV_OPTIONS_INFO& block = file->option_block();
    EXPECT_NE(file->option_word(), 0U);
    EXPECT_EQ(block.power_on_scheme, 3U);
    EXPECT_TRUE(block.fallback_enabled);
    EXPECT_EQ(block.fallback_address, 0x12345678U);
    EXPECT_FALSE(block.user_ios_weak_pullup);
    EXPECT_TRUE(block.option_flag_a);
    EXPECT_FALSE(block.enable_test);
    EXPECT_TRUE(block.disable_test);
    EXPECT_EQ(block.ufm_source, 2U);
    EXPECT_EQ(block.ufm_source_file, "data/user flash.hex");
}

TEST(bitstream_container, random_contents_survive_the_round_trip)
{
    std::mt19937 random(20);
    for (int round = 0; round < 200; ++round) {
        TEST_CONTENT content = small_content(random_bytes(random, 1 + random() % 3000));
        if (random() % 2 == 0)
            content.data.insert(content.data.begin(),
                                {SECTION_PERIPHERY, random_bytes(random, random() % 500)});
        if (random() % 2 == 0)
            content.scheme = static_cast<std::uint32_t>(random() % 25);
        for (auto i = random() % 20; i > 0; --i)
            content.options["option_" + std::to_string(random() % 1000)] = random() % 2 == 0;
        if (random() % 2 == 0) {
            content.kind = BITSTREAM_KIND::PMSF;
            const std::uint64_t core = content.data.back().second.size();
            const std::uint64_t first = 1 + random() % core;
            content.regions.push_back({"left", random() % 100, first});
            if (first < core)
                content.regions.push_back({"right", first + 1000, core - first});
        }
        std::string message;
        const auto file = open_bytes(make_file(content), message);
        ASSERT_NE(file, nullptr) << message;
        EXPECT_EQ(file->kind(), content.kind);
        EXPECT_EQ(file->scheme(), content.scheme);
        EXPECT_EQ(file->options(), content.options);
        EXPECT_EQ(file->regions(), content.regions);
        for (const auto& [tag, bytes] : content.data)
            EXPECT_EQ(section_bytes(*file, tag), bytes);
        EXPECT_TRUE(file->verify(message)) << message;
    }
}

TEST(bitstream_container, configuration_data_is_periphery_then_core)
{
    const TEST_CONTENT content = full_content();
    std::string message;
    const auto file = open_bytes(make_file(content), message);
    ASSERT_NE(file, nullptr) << message;
    BYTES wanted = content.data[0].second;
    wanted.insert(wanted.end(), content.data[1].second.begin(), content.data[1].second.end());
    EXPECT_EQ(bytes_of(*file->configuration_data()), wanted);
}

TEST(bitstream_container, has_the_documented_bytes)
{
    TEST_CONTENT content;
    content.device = {"AB1", 0x01020304};
    content.data = {{SECTION_CORE, {0xAA, 0x55}}};
    const BYTES file = make_file(content);
    const BYTES start = {0x89, 'I', 'W', 'B', 0x0D, 0x0A, 0x1A, 0x0A, 'S', 'O', 'F', ' ', 1, 0,
                         3,    0,   122, 0,   0,    0,    0,    0,    0,   0,   0,   0,   0, 0};
    ASSERT_EQ(file.size(), 122U);
    EXPECT_EQ(BYTES(file.begin(), file.begin() + 28), start);
    EXPECT_EQ(BYTES(file.begin() + 32, file.begin() + 36), (BYTES{'D', 'E', 'V', 'C'}));
    EXPECT_EQ(BYTES(file.begin() + 40, file.begin() + 48), (BYTES{8, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(BYTES(file.begin() + 64, file.begin() + 72), (BYTES{'H', 'A', 'S', 'H', 0, 0, 0, 0}));
    EXPECT_EQ(BYTES(file.begin() + 80, file.begin() + 90), (BYTES{4, 3, 2, 1, 3, 'A', 'B', '1', 0xAA, 0x55}));
}

TEST(bitstream_container, equal_contents_give_equal_bytes)
{
    EXPECT_EQ(make_file(full_content()), make_file(full_content()));
}

TEST(bitstream_container, an_unknown_section_is_kept_and_skipped)
{
    TEST_CONTENT content = full_content();
    const SECTION_TAG unknown = {'X', 'Y', 'Z', '1'};
    content.data.insert(content.data.begin(), {unknown, {1, 2, 3}});
    std::string message;
    const auto file = open_bytes(make_file(content), message);
    ASSERT_NE(file, nullptr) << message;
    EXPECT_EQ(section_bytes(*file, unknown), (BYTES{1, 2, 3}));
    EXPECT_EQ(section_description(unknown), "unknown data");
    EXPECT_EQ(section_bytes(*file, SECTION_CORE), content.data[2].second);
    EXPECT_TRUE(file->verify(message)) << message;
}

TEST(bitstream_container, a_flaw_in_an_unknown_section_is_found_by_verify)
{
    TEST_CONTENT content = small_content({1});
    content.data.push_back({{'X', 'Y', 'Z', '1'}, {1, 2, 3}});
    BYTES file = make_file(content);
    file[file.size() - 33] ^= 0x10;
    EXPECT_THAT(open_and_verify(file),
                HasSubstr("the checksum of the unknown data (section XYZ1 at offset "));
}

TEST(bitstream_container, a_file_cut_off_at_any_length_is_refused)
{
    const BYTES file = make_file(full_content());
    for (std::size_t length = 0; length < file.size(); ++length) {
        const std::string message =
            refusal(BYTES(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)));
        if (length < 8)
            ASSERT_EQ(message, "a.sof is not a bitstream file.");
        else if (length < 32)
            ASSERT_EQ(message, "a.sof is cut off: it ends within its header.");
        else if (length < 32 + 9 * 16)
            ASSERT_EQ(message, "a.sof is cut off: it ends within its section directory.");
        else
            ASSERT_EQ(message, "a.sof is cut off: it has " + std::to_string(length) + " bytes instead of " +
                                   std::to_string(file.size()) + ".");
    }
}

TEST(bitstream_container, bytes_behind_the_end_are_refused)
{
    BYTES file = make_file(small_content({1}));
    file.push_back(0);
    EXPECT_EQ(refusal(file), "a.sof is damaged: it has " + std::to_string(file.size()) +
                                 " bytes instead of " + std::to_string(file.size() - 1) + ".");
}

TEST(bitstream_container, a_flipped_bit_anywhere_in_the_header_is_found_on_opening)
{
    const BYTES good = make_file(full_content());
    const std::size_t header_end = 32 + 9 * 16 + encode_device(full_content().device).size();
    for (std::size_t offset = 0; offset < header_end; ++offset) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            BYTES file = good;
            file[offset] ^= static_cast<std::uint8_t>(1U << bit);
            const std::string message = refusal(file);
            if (offset < 8)
                ASSERT_EQ(message, "a.sof is not a bitstream file.");
            else if (offset == 12 || offset == 13)
                ASSERT_THAT(message, StartsWith("a.sof has version "));
            else
                ASSERT_THAT(message,
                            testing::AnyOf("a.sof is damaged: the checksum of its header does not fit.",
                                           StartsWith("a.sof is damaged: it claims "),
                                           "a.sof is cut off: it ends within its section directory.",
                                           StartsWith("a.sof is damaged: the checksum of the device record")))
                    << offset;
        }
    }
}

TEST(bitstream_container, a_flipped_bit_in_any_other_byte_is_found_by_verify)
{
    const BYTES good = make_file(full_content());
    std::mt19937 random(3);
    for (std::size_t offset = 32 + 9 * 16; offset < good.size(); offset += 1 + random() % 7) {
        BYTES file = good;
        file[offset] ^= static_cast<std::uint8_t>(1U << random() % 8);
        const std::string message = open_and_verify(file);
        if (offset >= good.size() - 32)
            ASSERT_EQ(message, "a.sof is damaged: the digest at offset " + std::to_string(good.size() - 32) +
                                   " does not fit the content.");
        else
            ASSERT_THAT(message, StartsWith("a.sof is damaged: the checksum of the ")) << offset;
    }
}

TEST(bitstream_container, verify_names_the_section_and_its_place)
{
    BYTES file = make_file(small_content({1, 2, 3, 4}));
    const std::size_t core = file.size() - 32 - 4;
    file[core + 2] ^= 1;
    EXPECT_EQ(open_and_verify(file),
              "a.sof is damaged: the checksum of the core data (section CORE at offset " +
                  std::to_string(core) + ") does not fit.");
}

TEST(bitstream_container, content_exchanged_together_with_its_checksum_is_found_by_the_digest)
{
    BYTES file = make_file(small_content({1, 2, 3, 4}));
    const BYTES other = make_file(small_content({1, 2, 3, 5}));
    std::copy(other.begin(), other.end() - 32, file.begin());
    EXPECT_THAT(open_and_verify(file), HasSubstr("the digest at offset "));
    mend_digest(file);
    EXPECT_EQ(open_and_verify(file), "");
}

// Directory entries of the small file: device at 32, core at 48, digest at 64; lengths 8 bytes in.
TEST(bitstream_container, lengths_that_lie_are_refused)
{
    const BYTES good = make_file(small_content({1, 2, 3, 4}));
    const std::string size = std::to_string(good.size());
    const std::string core = std::to_string(good.size() - 36);
    struct CASE {
        std::size_t offset;
        std::uint64_t value;
        std::string message;
    };
    const CASE cases[] = {
        {56, UINT64_MAX,
         "a.sof is damaged: the core data (section CORE at offset " + core +
             ") is 18446744073709551615 bytes long and leaves the file, which has " + size + " bytes."},
        {56, UINT64_MAX - good.size() + 5,
         "a.sof is damaged: the core data (section CORE at offset " + core + ") is " +
             std::to_string(UINT64_MAX - good.size() + 5) + " bytes long and leaves the file, which has " +
             size + " bytes."},
        {56, std::uint64_t{1} << 40,
         "a.sof is damaged: the core data (section CORE at offset " + core +
             ") is 1099511627776 bytes long and leaves the file, which has " + size + " bytes."},
        {56, 5,
         "a.sof is damaged: the digest (section HASH at offset " + std::to_string(good.size() - 31) +
             ") is 32 bytes long and leaves the file, which has " + size + " bytes."},
        {56, 3,
         "a.sof is damaged: its sections end at offset " + std::to_string(good.size() - 1) +
             ", but the file has " + size + " bytes."},
        {72, 31,
         "a.sof is damaged: its sections end at offset " + std::to_string(good.size() - 1) +
             ", but the file has " + size + " bytes."},
        {16, UINT64_MAX, "a.sof is cut off: it has " + size + " bytes instead of 18446744073709551615."},
        {16, 0, "a.sof is damaged: it has " + size + " bytes instead of 0."},
    };
    for (const CASE& row : cases) {
        BYTES file = good;
        put_number(file, row.offset, 8, row.value);
        mend_header(file);
        EXPECT_EQ(refusal(file), row.message);
    }
}

TEST(bitstream_container, overlapping_the_digest_with_the_core_is_refused)
{
    BYTES file = make_file(small_content({1, 2, 3, 4}));
    put_number(file, 56, 8, 36);
    put_number(file, 72, 8, 0);
    mend_header(file);
    EXPECT_EQ(refusal(file), "a.sof is damaged: its last section is not the digest.");
}

TEST(bitstream_container, rules_of_the_directory_are_enforced)
{
    const BYTES good = make_file(full_content());
    const auto refused = [&](auto&& change) {
        BYTES file = good;
        change(file);
        mend_header(file);
        return refusal(file);
    };
    EXPECT_EQ(refused([](BYTES& file) { file[14] = 65; }),
              "a.sof is damaged: it claims 65 sections, the limit is 64.");
    EXPECT_EQ(refused([](BYTES& file) { file[8] = 'X'; }),
              "a.sof is damaged: its header names no kind of bitstream file that this program knows.");
    EXPECT_EQ(refused([](BYTES& file) { file[24] = 1; }),
              "a.sof is damaged: its header names no kind of bitstream file that this program knows.");
    EXPECT_EQ(refused([](BYTES& file) { file[12] = 2; }),
              "a.sof has version 2 of the bitstream format; this program reads version 1.");
    EXPECT_EQ(refused([](BYTES& file) { file[32] = 'd'; }),
              "a.sof is damaged: the tag of section 1 is not made of letters.");
    EXPECT_EQ(refused([](BYTES& file) { std::copy_n("ABCD", 4, file.begin() + 32); }),
              "a.sof is damaged: its first section is not the device record.");
    EXPECT_EQ(refused([](BYTES& file) { std::copy_n("SCHM", 4, file.begin() + 32 + 32); }),
              "a.sof is damaged: section SCHM occurs twice.");
    EXPECT_EQ(refused([](BYTES& file) { std::copy_n("KORE", 4, file.begin() + 32 + 5 * 16); }),
              "a.sof is damaged: it holds no core data.");
    EXPECT_EQ(refused([](BYTES& file) { std::copy_n("PMSF", 4, file.begin() + 8); }),
              "a.sof is damaged: it is a partial bitstream without regions.");
    EXPECT_EQ(refused([](BYTES& file) { std::copy_n("REGN", 4, file.begin() + 32 + 6 * 16); }),
              "a.sof is damaged: it has regions but is no partial bitstream.");
    EXPECT_EQ(refused([](BYTES& file) { file[32 + 8 * 16 + 4] = 1; }),
              "a.sof is damaged: its last section is not the digest.");
}

TEST(bitstream_container, a_record_that_is_too_long_is_refused_before_memory_is_taken)
{
    TEST_CONTENT content = small_content({1});
    content.data.push_back({SECTION_OPTIONS, BYTES(65537)});
    MEMORY_SINK sink;
    BITSTREAM_WRITER writer(BITSTREAM_KIND::SOF, content.device);
    for (const auto& [tag, bytes] : content.data)
        writer.add_section(tag, std::make_shared<MEMORY_SOURCE>(bytes));
    std::string message;
    EXPECT_FALSE(writer.write(sink, message));
    EXPECT_THAT(message,
                StartsWith("The bitstream file would be unreadable: it is damaged: the options record"));
    EXPECT_THAT(message, HasSubstr(" is 65537 bytes long, the limit is 65536."));
    EXPECT_TRUE(sink.bytes().empty());
}

TEST(bitstream_container, malformed_records_are_refused_with_what_is_wrong)
{
    const auto refused = [](const SECTION_TAG& tag, const BYTES& record) {
        TEST_CONTENT content = small_content({1, 2});
        content.data.push_back({tag, record});
        if (tag == SECTION_REGIONS)
            content.kind = BITSTREAM_KIND::PMSF;
        return refusal(make_file(content));
    };
    EXPECT_EQ(refused(SECTION_SCHEME, {1, 0, 0}), "a.sof is damaged: the scheme record has a wrong length.");
    EXPECT_EQ(refused(SECTION_SCHEME, {25, 0, 0, 0}),
              "a.sof is damaged: the scheme record holds 25, schemes go from 0 to 24.");
    EXPECT_EQ(refused(SECTION_OPTIONS, {2, 0, 1, 1, 'a'}),
              "a.sof is damaged: the options record has a wrong length.");
    EXPECT_EQ(refused(SECTION_OPTIONS, {0xFF, 0xFF}),
              "a.sof is damaged: the options record has a wrong length.");
    EXPECT_EQ(refused(SECTION_OPTIONS, {1, 0, 2, 1, 'a'}),
              "a.sof is damaged: option 1 has no valid name or value.");
    EXPECT_EQ(refused(SECTION_OPTIONS, {1, 0, 1, 1, '-'}),
              "a.sof is damaged: option 1 has no valid name or value.");
    EXPECT_EQ(refused(SECTION_OPTIONS, {2, 0, 1, 1, 'a', 1, 1, 'a'}),
              "a.sof is damaged: option 2 is not in ascending order of names.");
    EXPECT_EQ(refused(SECTION_OPTION_BLOCK, BYTES(22)),
              "a.sof is damaged: the on-chip option block has an option word that is not defined.");
    EXPECT_EQ(refused(SECTION_OPTION_BLOCK, BYTES(21)),
              "a.sof is damaged: the on-chip option block has a wrong length.");
    BYTES block(22);
    block[0] = 1;
    block[16] = 3;
    EXPECT_EQ(refused(SECTION_OPTION_BLOCK, block),
              "a.sof is damaged: the on-chip option block names source 3 for "
              "the user flash memory, sources go from 0 to 2.");
    EXPECT_EQ(refused(SECTION_REGIONS, {0, 0}), "a.sof is damaged: the region record has a wrong length.");
    EXPECT_EQ(refused(SECTION_REGIONS, encode_regions({{"a", 0, 2}, {"b", 1, 1}})),
              "a.sof is damaged: region b is empty, overlaps the one before it, or leaves the device.");
    EXPECT_EQ(refused(SECTION_REGIONS, encode_regions({{"a", UINT64_MAX, 2}})),
              "a.sof is damaged: region a is empty, overlaps the one before it, or leaves the device.");
    EXPECT_EQ(refused(SECTION_REGIONS, encode_regions({{"a", 0, 3}})),
              "a.sof is damaged: its regions take 3 bytes, but its core data has 2.");
    EXPECT_EQ(refused(SECTION_REGIONS, encode_regions({{"a b", 0, 2}})),
              "a.sof is damaged: region 1 has no valid name.");
}

TEST(bitstream_container, a_device_without_a_proper_name_is_refused)
{
    TEST_CONTENT content = small_content({1});
    for (const std::string& name :
         {std::string(), std::string("a/b"), std::string(65, 'a'), std::string("\xC3\xA4")}) {
        BITSTREAM_WRITER writer(BITSTREAM_KIND::SOF, {name, 1});
        writer.add_section(SECTION_CORE, std::make_shared<MEMORY_SOURCE>(BYTES{1}));
        MEMORY_SINK sink;
        std::string message;
        EXPECT_FALSE(writer.write(sink, message)) << name;
        EXPECT_EQ(message,
                  "The bitstream file would be unreadable: it is damaged: the device record holds no valid "
                  "device name.");
    }
}

TEST(bitstream_container, a_section_added_twice_is_a_programming_fault)
{
    BITSTREAM_WRITER writer(BITSTREAM_KIND::SOF, {"A", 1});
    writer.add_section(SECTION_CORE, std::make_shared<MEMORY_SOURCE>(BYTES{1}));
    EXPECT_INTERNAL_ERROR(writer.add_section(SECTION_CORE, std::make_shared<MEMORY_SOURCE>(BYTES{1})),
                          "no section has this tag yet");
}

TEST(bitstream_container, mutations_never_pass_as_good_files)
{
    const BYTES good = make_file(full_content());
    std::mt19937 random(11);
    for (int round = 0; round < 3000; ++round) {
        BYTES file = good;
        const std::size_t at = random() % file.size();
        const std::size_t length = 1 + random() % 40;
        const auto from = file.begin() + static_cast<std::ptrdiff_t>(at);
        const auto to = file.begin() + static_cast<std::ptrdiff_t>(std::min(at + length, file.size()));
        switch (random() % 3) {
        case 0:
            for (auto it = from; it != to; ++it)
                *it = static_cast<std::uint8_t>(random());
            break;
        case 1:
            file.erase(from, to);
            break;
        default: {
            const BYTES repeated(from, to);
            file.insert(from, repeated.begin(), repeated.end());
        }
        }
        if (file == good)
            continue;
        // Also behind the header's checksum, where a careless reader would trust lengths.
        ASSERT_NE(open_and_verify(file), "") << round;
        if (file.size() > 32 + 16U * (file[14] + 256U * file[15])) {
            mend_header(file);
            ASSERT_NE(open_and_verify(file), "") << round;
        }
    }
}

TEST(bitstream_container, a_file_of_one_gibibyte_opens_without_being_read)
{
    const TEMPORARY_DIRECTORY directory;
    const std::string path = directory / "large.sof";
    TEST_CONTENT content = small_content({1, 2, 3, 4});
    BYTES header = make_file(content);
    const std::uint64_t core_length = std::uint64_t{1} << 30;
    const std::uint64_t size = header.size() - 4 + core_length;
    put_number(header, 56, 8, core_length);
    put_number(header, 16, 8, size);
    mend_header(header);
    header.erase(header.end() - 36, header.end());
    write_file(path, header);
    ASSERT_EQ(::truncate(path.c_str(), static_cast<off_t>(size)), 0);

    rusage before{};
    rusage after{};
    ::getrusage(RUSAGE_SELF, &before);
    const PEAK_MEMORY memory;
    std::string message;
    const auto file = BITSTREAM_FILE::open(path, message);
    ASSERT_NE(file, nullptr) << message;
    EXPECT_EQ(file->section(SECTION_CORE)->size(), core_length);
    BYTES end(16, 1);
    EXPECT_TRUE(file->section(SECTION_CORE)->read(core_length - 16, end, message)) << message;
    EXPECT_EQ(end, BYTES(16));
    ::getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(memory.kib(), 4 * 1024U);
    EXPECT_LT(after.ru_inblock - before.ru_inblock, 2048) << "blocks of 512 bytes";
}

} // namespace
