// What holds for every format alike: each case runs through every row of the registry.

#include "format_registry.h"
#include "format_test_support.h"
#include "stream_key.h"

#include <gtest/gtest.h>

#include <set>

// The address of the format, which googletest would print, is another one in every run.
static void PrintTo(const FORMAT_ROW& row, std::ostream* out)
{
    *out << "type_" << row.type;
}

namespace
{
struct SAMPLE {
    explicit SAMPLE(const FORMAT_ROW& row, std::size_t size = 300)
        : bytes(make_bytes(size, 42)), source(make(row, bytes))
    {
        request.image = &source;
        request.device = "W25Q128JV";
        request.target = {"BS1L15", 0x10A15BC7, 10};
        request.flash = {{0xEF, 0x40, 0x18}, 3, 65536, 256};
        request.frequency = 10'000'000;
        request.voltage = "3.3";
        KEY_INFO info;
        info.id = STREAM_KEY::derive(SECRET_BYTES(key.begin(), key.end()))->id();
        info.fuse_options[2] = 3;
        request.keys = {{"BS1L15", 0x10A15BC7, info, key}};
        IMAGE_MEASUREMENTS measured;
        measured.device = "BS1L15";
        measured.idcode = 0x10A15BC7;
        measured.firmware.emplace().fill(0x5A);
        request.measurements = {measured, measured};
        request.measurements[1].firmware.reset();
        if (row.subject == FORMAT_SUBJECT::FLASH_IMAGE)
            request.regions = {{"P1", 0, size / 2, size / 2, true, 1, "top.sof", 0x12345678},
                               {"P2", size / 2 + 1, 1, size - 1, false, 0, "data.bin", 0x9ABCDEF0}};
    }
    SAMPLE(const SAMPLE&) = delete;

    static BYTES make(const FORMAT_ROW& row, BYTES& content)
    {
        if (row.subject == FORMAT_SUBJECT::FLASH_IMAGE)
            std::fill(content.begin() + static_cast<std::ptrdiff_t>(content.size() / 2 + 2), content.end(),
                      0xFF);
        return content;
    }

    BYTES bytes;
    BYTES key = make_bytes(32, 7);
    MEMORY_SOURCE source;
    FORMAT_REQUEST request;
};

bool verifies(const FORMAT& format, const FORMAT_REQUEST& request, const BYTES& file)
{
    std::string message;
    const bool verified = format.verify(request, MEMORY_SOURCE(file), message);
    EXPECT_EQ(verified, message.empty());
    return verified;
}

std::string name(const testing::TestParamInfo<FORMAT_ROW>& info)
{
    return testing::PrintToString(info.param);
}

class every_format : public testing::TestWithParam<FORMAT_ROW>
{
};

std::vector<FORMAT_ROW> rows()
{
    const auto all = get_format_rows();
    return {all.begin(), all.end()};
}
INSTANTIATE_TEST_SUITE_P(registry, every_format, testing::ValuesIn(rows()), name);
} // namespace

TEST_P(every_format, every_flipped_bit_is_found)
{
    const FORMAT& format = *GetParam().format;
    for (const bool odd : {false, true}) {
        SAMPLE sample(GetParam());
        sample.request.count_down = sample.request.bitswap = odd;
        sample.request.start_address = GetParam().subject == FORMAT_SUBJECT::STREAM ? 0x0001FFF3 : 0;
        BYTES file = write_format(format, sample.request);
        ASSERT_TRUE(verifies(format, sample.request, file));
        for (std::size_t i = 0; i != file.size(); ++i)
            for (unsigned bit = 0; bit != 8; ++bit) {
                file[i] ^= static_cast<std::uint8_t>(1u << bit);
                ASSERT_FALSE(verifies(format, sample.request, file)) << "byte " << i << " bit " << bit;
                file[i] ^= static_cast<std::uint8_t>(1u << bit);
            }
    }
}

TEST_P(every_format, every_byte_replaced_by_another_is_found)
{
    const FORMAT& format = *GetParam().format;
    const SAMPLE sample(GetParam(), 60);
    BYTES file = write_format(format, sample.request);
    // Of a long file each byte takes some of the other values, each time others.
#ifdef __SANITIZE_THREAD__
    // One thread reads a file; what this sanitizer could find, it finds in few trials.
    constexpr std::size_t MOST_TRIALS = 10000;
#else
    constexpr std::size_t MOST_TRIALS = 300000;
#endif
    const std::size_t step = file.size() * 256 / MOST_TRIALS + 1;
    for (std::uint8_t& byte : file) {
        const std::uint8_t kept = byte;
        for (std::size_t value = static_cast<std::size_t>(&byte - file.data()) % step; value < 256;
             value += step) {
            byte = static_cast<std::uint8_t>(value);
            ASSERT_EQ(verifies(format, sample.request, file), value == kept) << &byte - file.data();
        }
        byte = kept;
    }
}

TEST_P(every_format, every_truncation_and_every_appended_byte_is_found)
{
    const FORMAT& format = *GetParam().format;
    const SAMPLE sample(GetParam());
    const BYTES file = write_format(format, sample.request);
    for (std::size_t length = 0; length != file.size(); ++length)
        ASSERT_FALSE(verifies(format, sample.request,
                              BYTES(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length))))
            << length;
    for (const char more : {'\n', ' ', '0', '\0', '\xFF'}) {
        BYTES longer = file;
        longer.push_back(static_cast<std::uint8_t>(more));
        EXPECT_FALSE(verifies(format, sample.request, longer));
    }
}

TEST_P(every_format, mutated_files_are_found_and_never_crash_a_reader)
{
    const FORMAT& format = *GetParam().format;
    const SAMPLE sample(GetParam(), 200);
    const BYTES good = write_format(format, sample.request);
    DICE random(GetParam().type + 1);
    for (int round = 0; round != 4000; ++round) {
        BYTES file = good;
        for (std::uint32_t count = 1 + random() % 4; count-- != 0 && !file.empty();) {
            const std::size_t at = random() % file.size();
            const std::size_t length = std::min<std::size_t>(random() % 40, file.size() - at);
            const auto begin = file.begin() + static_cast<std::ptrdiff_t>(at);
            const BYTES piece(begin, begin + static_cast<std::ptrdiff_t>(length));
            switch (random() % 4) {
            case 0:
                *begin = static_cast<std::uint8_t>(random());
                break;
            case 1:
                file.erase(begin, begin + static_cast<std::ptrdiff_t>(length));
                break;
            case 2:
                file.insert(begin, piece.begin(), piece.end());
                break;
            default:
                std::fill(begin, begin + static_cast<std::ptrdiff_t>(length),
                          static_cast<std::uint8_t>("09AF:,\n\xFF"[random() % 8]));
            }
        }
        ASSERT_EQ(verifies(format, sample.request, file), file == good);
        MEMORY_SINK sink;
        FORMAT_FACTS facts;
        std::string message;
        if (file.size() < 100000 && !format.inspect(MEMORY_SOURCE(file), facts, message)) {
            EXPECT_NE(message, "");
            EXPECT_FALSE(format.decode(MEMORY_SOURCE(file), sink, message));
        }
    }
}

TEST_P(every_format, a_full_disk_leaves_the_sinks_sentence)
{
    const FORMAT& format = *GetParam().format;
    SAMPLE sample(GetParam(), 300000);
    sample.request.start_address = GetParam().subject == FORMAT_SUBJECT::STREAM ? 5 : 0;
    const std::uint64_t size = write_format(format, sample.request).size();
    std::set<std::uint64_t> capacities = {0, 1, size / 3, size / 2, size - 1};
    for (std::uint64_t block = 32768; block < size; block += 32768)
        capacities.insert({block - 1, block, block + 1});
    for (const std::uint64_t capacity : capacities) {
        if (capacity >= size)
            continue;
        FULL_SINK sink(capacity);
        std::string message;
        ASSERT_FALSE(format.write(sample.request, sink, message)) << capacity << " of " << size;
        EXPECT_EQ(message, "out.bin cannot be written: no space left on device.");
    }
    FULL_SINK enough(size);
    std::string message;
    EXPECT_TRUE(format.write(sample.request, enough, message)) << message;
}

TEST_P(every_format, an_input_that_cannot_be_read_leaves_its_sentence)
{
    if (GetParam().type == VEK_MAP_FILE_TYPE || GetParam().subject == FORMAT_SUBJECT::KEYS ||
        GetParam().subject == FORMAT_SUBJECT::MEASUREMENTS)
        return; // made without looking at an image
    const FORMAT& format = *GetParam().format;
    SAMPLE sample(GetParam(), 300000);
    const BYTES file = write_format(format, sample.request);
    for (const std::uint64_t limit : {0u, 1u, 65536u, 200000u, 299999u}) {
        const BROKEN_SOURCE broken(sample.bytes, limit);
        FORMAT_REQUEST request = sample.request;
        request.image = &broken;
        MEMORY_SINK sink;
        std::string message;
        EXPECT_FALSE(format.write(request, sink, message));
        EXPECT_EQ(message, "in.bin cannot be read: input/output error.");
        message.clear();
        EXPECT_FALSE(format.verify(request, MEMORY_SOURCE(file), message));
        EXPECT_EQ(message, "in.bin cannot be read: input/output error.");
        message.clear();
        EXPECT_FALSE(format.verify(
            sample.request, BROKEN_SOURCE(file, std::min<std::uint64_t>(limit, file.size() - 1)), message));
        EXPECT_EQ(message, "in.bin cannot be read: input/output error.");
    }
}

TEST_P(every_format, the_same_input_gives_the_same_bytes)
{
    const SAMPLE first(GetParam(), 5000);
    const SAMPLE second(GetParam(), 5000);
    EXPECT_EQ(write_format(*GetParam().format, first.request),
              write_format(*GetParam().format, second.request));
}

TEST(format_registry, rows_are_unique_and_found_by_their_type)
{
    std::set<VEK_FILE_TYPE> seen;
    for (const FORMAT_ROW& row : get_format_rows()) {
        EXPECT_TRUE(seen.insert(row.type).second) << row.type;
        EXPECT_EQ(find_format_row(row.type), &row);
        EXPECT_EQ(find_format(row.type), row.format);
        EXPECT_NE(row.format, nullptr);
    }
    for (const VEK_FILE_TYPE type : {VEK_RBF_FILE_TYPE, VEK_TTF_FILE_TYPE, VEK_HEX_FILE_TYPE,
                                     VEK_RPD_FILE_TYPE, VEK_POF_FILE_TYPE, VEK_MAP_FILE_TYPE})
        EXPECT_TRUE(seen.contains(type));
    EXPECT_EQ(find_format(VEK_INVALID_FILE_TYPE), nullptr);
    EXPECT_EQ(find_format(VEK_CVP_GROUP_FILE_TYPE), nullptr);
}
