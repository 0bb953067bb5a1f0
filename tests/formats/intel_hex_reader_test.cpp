#include "format_test_support.h"
#include "intel_hex_reader.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
std::string record(unsigned type, unsigned address, const BYTES& data)
{
    BYTES bytes = {static_cast<std::uint8_t>(data.size()), static_cast<std::uint8_t>(address >> 8),
                   static_cast<std::uint8_t>(address), static_cast<std::uint8_t>(type)};
    bytes.insert(bytes.end(), data.begin(), data.end());
    unsigned sum = 0;
    for (const std::uint8_t byte : bytes)
        sum += byte;
    bytes.push_back(static_cast<std::uint8_t>(0x100 - sum % 256));
    std::string text = ":";
    for (const std::uint8_t byte : bytes) {
        text += "0123456789ABCDEF"[byte >> 4];
        text += "0123456789ABCDEF"[byte & 15];
    }
    return text;
}

const std::string END = ":00000001FF\n";

std::shared_ptr<INTEL_HEX_IMAGE> open(const std::string& text, std::string& message)
{
    return INTEL_HEX_IMAGE::open(std::make_shared<MEMORY_SOURCE>(bytes_of(text)), "data.hex", message);
}

std::string refusal(const std::string& text)
{
    std::string message;
    EXPECT_EQ(open(text, message), nullptr);
    return message;
}

BYTES contents(const std::string& text)
{
    std::string message;
    const std::shared_ptr<INTEL_HEX_IMAGE> image = open(text, message);
    if (!image) {
        ADD_FAILURE() << message;
        return {};
    }
    BYTES bytes(image->size());
    EXPECT_TRUE(image->read(0, bytes, message)) << message;
    return bytes;
}
} // namespace

TEST(intel_hex_reader, gaps_read_as_fill_and_addresses_count_from_the_lowest)
{
    const std::string text = record(0, 0x108, {5, 6}) + "\n" + record(0, 0x100, {1, 2, 3}) + "\n" + END;
    std::string message;
    const std::shared_ptr<INTEL_HEX_IMAGE> image = open(text, message);
    ASSERT_NE(image, nullptr) << message;
    EXPECT_EQ(image->address(), 0x100u);
    EXPECT_EQ(contents(text), (BYTES{1, 2, 3, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 5, 6}));
    ASSERT_EQ(image->contents().segments.size(), 2u);
    EXPECT_EQ(image->contents().segments[0].line, 2u);
    EXPECT_EQ(image->contents().segments[1].line, 1u);
    BYTES part(3);
    ASSERT_TRUE(image->read(2, part, message));
    EXPECT_EQ(part, (BYTES{3, 0xFF, 0xFF}));
    EXPECT_FALSE(image->read(8, part, message));
    EXPECT_EQ(message, "The range of 3 bytes at 0x00000008 does not lie within the Intel HEX file.");
}

TEST(intel_hex_reader, other_spellings_are_read)
{
    EXPECT_EQ(contents("\r\n  :020000000a0BE9  \r\n\t\n:00000001ff\r\n \r\n"), (BYTES{0x0A, 0x0B}));
    EXPECT_EQ(contents(":0100000007F8\n:00000001FF"), (BYTES{7}));
    EXPECT_EQ(contents(record(0, 0, {}) + "\n" + record(0, 9, {1}) + "\n" + END), (BYTES{1}));
}

TEST(intel_hex_reader, segment_and_linear_address_records_move_the_base)
{
    const std::string text = record(2, 0, {0x12, 0x34}) + "\n" + record(0, 0x10, {1}) + "\n" +
                             record(4, 0, {0x00, 0x02}) + "\n" + record(0, 0x0000, {2}) + "\n" +
                             record(5, 0, {0x08, 0x00, 0x01, 0xC5}) + "\n" + END;
    std::string message;
    const std::shared_ptr<INTEL_HEX_IMAGE> image = open(text, message);
    ASSERT_NE(image, nullptr) << message;
    ASSERT_EQ(image->contents().segments.size(), 2u);
    EXPECT_EQ(image->contents().segments[0].address, 0x12350u);
    EXPECT_EQ(image->contents().segments[1].address, 0x20000u);
    EXPECT_TRUE(image->contents().has_entry);
    EXPECT_EQ(image->contents().entry, 0x080001C5u);
    EXPECT_EQ(image->contents().records, 6u);
}

TEST(intel_hex_reader, a_linear_record_may_run_into_the_next_64_kib)
{
    const std::string text = record(4, 0, {0, 1}) + "\n" + record(0, 0xFFFF, {1, 2}) + "\n" +
                             record(4, 0, {0, 2}) + "\n" + record(0, 1, {3}) + "\n" + END;
    std::string message;
    const std::shared_ptr<INTEL_HEX_IMAGE> image = open(text, message);
    ASSERT_NE(image, nullptr) << message;
    EXPECT_EQ(image->address(), 0x1FFFFu);
    EXPECT_EQ(image->contents().segments.size(), 1u);
    EXPECT_EQ(contents(text), (BYTES{1, 2, 3}));
}

TEST(intel_hex_reader, every_refusal_names_the_file_and_the_line)
{
    const std::string good = record(0, 0, {1, 2, 3, 4}) + "\n";
    EXPECT_EQ(refusal(""), "data.hex: The file is empty.");
    EXPECT_EQ(refusal(END), "data.hex: The file holds no data records.");
    EXPECT_EQ(refusal(good),
              "data.hex: The file ends in line 1 without an end record (:00000001FF); it is not "
              "complete.");
    EXPECT_EQ(refusal(good + END + "\nmore"),
              "data.hex: There is text behind the end record in line 2; remove it, "
              "or the records that it cuts off.");
    EXPECT_EQ(refusal(good + END + good + END),
              "data.hex: There is text behind the end record in line 2; remove "
              "it, or the records that it cuts off.");
    EXPECT_EQ(refusal(good + "S1\n"),
              "data.hex: Line 2: a record begins with a colon, but there is 'S'; the file is "
              "no Intel HEX file or is damaged.");
    EXPECT_EQ(refusal(std::string("\0", 1)),
              "data.hex: Line 1: a record begins with a colon, but there is the byte "
              "0x00; the file is no Intel HEX file or is damaged.");
    EXPECT_EQ(refusal("\n\n:04000000010203\n"),
              "data.hex: Line 3: the record is cut off; the file is damaged.");
    EXPECT_EQ(refusal(good + ":"), "data.hex: Line 2: the record is cut off; the file is damaged.");
    EXPECT_EQ(refusal(":0400000001020304F3\n"),
              "data.hex: Line 1: the checksum is 0xF3, but the record asks for "
              "0xF2; the file is damaged.");
    EXPECT_EQ(refusal(":04000000010203G4F2\n"), "data.hex: Line 1: 'G' is no hexadecimal digit; the file is "
                                                "damaged.");
    EXPECT_EQ(refusal(":0400000001020304F2 ;\n"), "data.hex: Line 1: there is ';' behind the checksum of the "
                                                  "record.");
    EXPECT_EQ(refusal(record(6, 0, {}) + "\n"),
              "data.hex: Line 1: the record type 0x06 is not one of 00 to 05.");
    EXPECT_EQ(refusal(record(4, 0, {1}) + "\n"),
              "data.hex: Line 1: a record of type 0x04 has 2 bytes of data, this one has 1.");
    EXPECT_EQ(refusal(record(1, 0, {1}) + "\n"),
              "data.hex: Line 1: a record of type 0x01 has 0 bytes of data, this one has 1.");
    EXPECT_EQ(refusal(record(3, 0, {1, 2}) + "\n"),
              "data.hex: Line 1: a record of type 0x03 has 4 bytes of data, this one has 2.");
    EXPECT_EQ(
        refusal(good + record(0, 0xFFFF, {1, 2}) + "\n"),
        "data.hex: Line 2: the data at 0x0000FFFF wraps around at the end of its 64 KiB segment; split the "
        "record.");
    EXPECT_EQ(refusal(record(4, 0, {0xFF, 0xFF}) + "\n" + record(0, 0xFFFF, {1, 2}) + "\n"),
              "data.hex: Line 2: the data at 0xFFFFFFFF leaves the 32 bit addresses.");
}

TEST(intel_hex_reader, an_address_given_twice_names_both_lines)
{
    const std::string text = record(0, 0, BYTES(16, 1)) + "\n" + record(0, 16, BYTES(16, 2)) + "\n" +
                             record(0, 64, {9}) + "\n\n" + record(0, 20, {3}) + "\n" + END;
    EXPECT_EQ(refusal(text),
              "data.hex: Line 5: the byte at address 0x00000014 is given a second time, first in "
              "line 2.");
    const std::string backwards = record(0, 8, BYTES(4, 1)) + "\n" + record(0, 0, BYTES(16, 1)) + "\n" + END;
    EXPECT_EQ(refusal(backwards),
              "data.hex: Line 2: the byte at address 0x00000008 is given a second time, first "
              "in line 1.");
}

TEST(intel_hex_reader, records_of_any_order_and_length_are_put_in_place)
{
    DICE random(7);
    for (int round = 0; round != 30; ++round) {
        const BYTES bytes = make_bytes(1 + random() % 40000, random());
        std::vector<std::string> records;
        for (std::size_t at = 0; at != bytes.size();) {
            const std::size_t length =
                std::min<std::size_t>(1 + random() % (round % 2 ? 255 : 32), bytes.size() - at);
            records.push_back(record(0, static_cast<unsigned>(at),
                                     BYTES(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                                           bytes.begin() + static_cast<std::ptrdiff_t>(at + length))));
            at += length;
        }
        if (round % 3 == 0)
            std::shuffle(records.begin(), records.end(), random);
        std::string text;
        for (const std::string& line : records)
            text += line + (random() % 5 == 0 ? "\r\n" : "\n");
        text += END;
        ASSERT_TRUE(contents(text) == bytes);

        std::string message;
        const std::shared_ptr<INTEL_HEX_IMAGE> image = open(text, message);
        for (int piece = 0; piece != 20; ++piece) {
            const std::size_t from = random() % bytes.size();
            BYTES part(random() % (bytes.size() - from + 1));
            ASSERT_TRUE(image->read(from, part, message)) << message;
            ASSERT_TRUE(
                std::equal(part.begin(), part.end(), bytes.begin() + static_cast<std::ptrdiff_t>(from)));
        }
    }
}

TEST(intel_hex_reader, the_index_stays_small_against_the_text)
{
    std::string text;
    const BYTES data(16, 0x5A);
    for (unsigned i = 0; i != 4096 * 16; ++i) {
        if (i % 4096 == 0)
            text += record(4, 0, {0, static_cast<std::uint8_t>(i / 4096)}) + "\n";
        text += record(0, i * 16 % 0x10000, data) + "\n";
    }
    std::string message;
    const std::shared_ptr<INTEL_HEX_IMAGE> image = open(text + END, message);
    ASSERT_NE(image, nullptr) << message;
    EXPECT_EQ(image->contents().segments.size(), 1u);
    EXPECT_LE(image->contents().checkpoints.size(), text.size() / INTEL_HEX_FILE::CHECKPOINT_DISTANCE + 1);
    EXPECT_EQ(image->size(), 1048576u);
}

TEST(intel_hex_reader, more_breaks_in_the_addresses_than_the_index_takes_are_refused)
{
    std::string text;
    for (unsigned bank = 0; bank != 9; ++bank) {
        text += record(4, 0, {0, static_cast<std::uint8_t>(bank)}) + "\n";
        for (unsigned at = 0; at != 0x10000; at += 2)
            text += record(0, at, {1}) + "\n";
    }
    EXPECT_EQ(refusal(text + END),
              "data.hex: Line 262154: the addresses break more than 262144 times; sort the "
              "records by address.");
}

TEST(intel_hex_reader, a_file_that_changes_while_it_is_read_is_told)
{
    const std::string text = record(0, 0, BYTES(16, 1)) + "\n" + record(0, 16, {1}) + "\n" + END;
    INTEL_HEX_FILE file;
    std::string message;
    ASSERT_TRUE(INTEL_HEX_FILE::read(MEMORY_SOURCE(bytes_of(text)), file, message));
    for (const std::string& changed : {END, std::string(), text.substr(0, 50)}) {
        const MEMORY_SOURCE source(bytes_of(changed));
        const INTEL_HEX_IMAGE image(source, file);
        BYTES bytes(17);
        EXPECT_FALSE(image.read(0, bytes, message));
        EXPECT_EQ(message, "The Intel HEX file was changed while it was being read; start again.");
    }
}
