#include "atomic_file.h"
#include "bitstream_test_support.h"
#include "configuration_stream.h"
#include "reference_loader.h"
#include "sample.h"
#include "stream_reader.h"
#include "temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace
{

constexpr std::size_t MIB = 1024 * 1024;

/// Files in a directory of their own and the streams that come of them.
class configuration_stream : public testing::Test
{
protected:
    std::string add_file(const std::string& name, const TEST_CONTENT& content)
    {
        write_file(m_directory / name, make_file(content));
        return m_directory / name;
    }

    BYTES build(const std::vector<STREAM_INPUT>& inputs, STREAM_SELECTION selection = STREAM_SELECTION::ALL)
    {
        std::string message;
        const auto stream = build_configuration_stream(inputs, m_directory.path(), message, selection);
        EXPECT_NE(stream, nullptr) << message;
        return stream ? bytes_of(*stream) : BYTES{};
    }

    std::string refusal(const std::vector<STREAM_INPUT>& inputs,
                        STREAM_SELECTION selection = STREAM_SELECTION::ALL)
    {
        std::string message;
        EXPECT_EQ(build_configuration_stream(inputs, m_directory.path(), message, selection), nullptr);
        return message;
    }

    static LOADED_STREAM load(const BYTES& bytes)
    {
        LOADED_STREAM loaded;
        std::string error;
        EXPECT_TRUE(load_configuration_stream(bytes, loaded, error)) << error;
        return loaded;
    }

    TEMPORARY_DIRECTORY m_directory;
};

/// Core data that fills several packets, of which one cannot be compressed.
TEST_CONTENT large_content(unsigned seed)
{
    std::mt19937 random(seed);
    TEST_CONTENT content = small_content(redundant_bytes(random, 2 * MIB + 12345));
    const BYTES dense = random_bytes(random, MIB);
    std::copy(dense.begin(), dense.end(), content.data[0].second.begin() + static_cast<std::ptrdiff_t>(MIB));
    content.data.insert(content.data.begin(), {SECTION_PERIPHERY, redundant_bytes(random, 100000)});
    return content;
}

/// Decoded data, part by part.
class COLLECTED final : public STREAM_DATA_SINK
{
public:
    bool write(std::size_t image, STREAM_PART part, std::span<const std::uint8_t> bytes,
               std::string&) override
    {
        BYTES& target = parts[{image, part}];
        target.insert(target.end(), bytes.begin(), bytes.end());
        return true;
    }
    std::map<std::pair<std::size_t, STREAM_PART>, BYTES> parts;
};

std::string reading_refusal(const BYTES& bytes)
{
    STREAM_FACTS facts;
    std::string message;
    EXPECT_FALSE(read_configuration_stream(MEMORY_SOURCE(bytes), true, facts, nullptr, message));
    return message;
}

void append_packet(BYTES& stream, std::uint8_t opcode, const BYTES& payload)
{
    BYTES packet(4);
    packet[0] = opcode;
    put_number(packet, 1, 3, payload.size());
    packet.insert(packet.end(), payload.begin(), payload.end());
    packet.resize(packet.size() + 4);
    put_number(packet, packet.size() - 4, 4, reference_crc32(std::span(packet).first(packet.size() - 4)));
    stream.insert(stream.end(), packet.begin(), packet.end());
}

BYTES begin_payload(unsigned images)
{
    return {1, 0, static_cast<std::uint8_t>(images), 0};
}

BYTES device_payload(std::uint64_t core_length)
{
    BYTES payload(33);
    put_number(payload, 9, 8, core_length);
    const BYTES record = encode_device({"ABC", 5});
    payload.insert(payload.end(), record.begin(), record.end());
    return payload;
}

BYTES frames_payload(unsigned part, std::uint32_t length, std::uint64_t offset, const BYTES& stored)
{
    BYTES payload(16);
    payload[0] = static_cast<std::uint8_t>(part);
    put_number(payload, 4, 4, length);
    put_number(payload, 8, 8, offset);
    payload.insert(payload.end(), stored.begin(), stored.end());
    return payload;
}

const BYTES SYNC = {0xF1, 0x9A, 0x3C, 0x5E};

TEST_F(configuration_stream, a_device_receives_what_the_file_holds)
{
    const TEST_CONTENT content = full_content();
    const LOADED_STREAM loaded = load(build({{.path = add_file("a.sof", content)}}));
    ASSERT_EQ(loaded.images.size(), 1U);
    const LOADED_IMAGE& image = loaded.images[0];
    EXPECT_EQ(image.device, content.device.name);
    EXPECT_EQ(image.idcode, content.device.idcode);
    EXPECT_EQ(image.scheme, content.scheme);
    EXPECT_EQ(image.options, content.options);
    EXPECT_FALSE(image.partial);
    EXPECT_EQ(image.periphery, content.data[0].second);
    EXPECT_EQ(image.core, content.data[1].second);
    EXPECT_EQ(image.firmware, content.data[2].second);
    EXPECT_EQ(image.bootloader, content.data[3].second);
    EXPECT_EQ(image.lz4_packets + image.zstd_packets, 0U);
}

TEST_F(configuration_stream, no_path_of_the_user_gets_into_the_stream)
{
    const TEST_CONTENT content = full_content();
    const BYTES stream = build({{.path = add_file("a.sof", content)}});
    const std::string text(stream.begin(), stream.end());
    EXPECT_EQ(text.find("user flash.hex"), std::string::npos);
    EXPECT_EQ(text.find(m_directory.path()), std::string::npos);
    EXPECT_EQ(load(stream).images[0].option_block, encode_option_block(*content.option_block, false));
}

TEST_F(configuration_stream, data_of_several_packets_arrives_in_every_form)
{
    const TEST_CONTENT content = large_content(1);
    const std::string path = add_file("a.sof", content);
    const LOADED_IMAGE plain = load(build({{.path = path}})).images.at(0);
    const LOADED_IMAGE lz4 = load(build({{.path = path, .compression = true}})).images.at(0);
    const LOADED_IMAGE zstd = load(build({{.path = path, .enhanced_compression = true}})).images.at(0);
    for (const LOADED_IMAGE* image : {&plain, &lz4, &zstd}) {
        EXPECT_EQ(image->periphery, content.data[0].second);
        EXPECT_EQ(image->core, content.data[1].second);
    }
    EXPECT_EQ(plain.plain_packets, 4U);
    EXPECT_EQ(lz4.lz4_packets, 3U);
    EXPECT_EQ(lz4.plain_packets, 1U) << "the packet of random bytes";
    EXPECT_EQ(zstd.zstd_packets, 3U);
    EXPECT_EQ(zstd.plain_packets, 1U);
}

TEST_F(configuration_stream, compression_makes_redundant_data_smaller)
{
    std::mt19937 random(5);
    const std::string path = add_file("a.sof", small_content(redundant_bytes(random, 3 * MIB)));
    const std::size_t plain = build({{.path = path}}).size();
    const std::size_t lz4 = build({{.path = path, .compression = true}}).size();
    const std::size_t zstd = build({{.path = path, .enhanced_compression = true}}).size();
    EXPECT_LT(lz4, plain / 2);
    EXPECT_LT(zstd, lz4);
}

TEST_F(configuration_stream, compression_never_makes_a_stream_larger)
{
    std::mt19937 random(6);
    const std::string path = add_file("a.sof", small_content(random_bytes(random, MIB + 1)));
    const std::size_t plain = build({{.path = path}}).size();
    EXPECT_EQ(build({{.path = path, .compression = true}}).size(), plain);
    EXPECT_EQ(build({{.path = path, .enhanced_compression = true}}).size(), plain);
}

TEST_F(configuration_stream, packets_end_at_the_limit_and_at_the_end_of_the_data)
{
    std::mt19937 random(8);
    for (const std::size_t size : {std::size_t{1}, MIB - 1, MIB, MIB + 1}) {
        const BYTES core = redundant_bytes(random, size);
        const std::string path = add_file("a.sof", small_content(core));
        for (const bool compressed : {false, true}) {
            const LOADED_IMAGE image = load(build({{.path = path, .compression = compressed}})).images.at(0);
            EXPECT_EQ(image.core, core);
            EXPECT_EQ(image.plain_packets + image.lz4_packets, size > MIB ? 2U : 1U);
        }
    }
}

TEST_F(configuration_stream, files_are_chained_in_the_order_given)
{
    const TEST_CONTENT first = large_content(1);
    TEST_CONTENT second = small_content({1, 2, 3});
    second.device = {"OTHER-1", 77};
    const std::string a = add_file("a.sof", first);
    const std::string b = add_file("b.sof", second);
    const LOADED_STREAM loaded = load(
        build({{.path = b}, {.path = a, .compression = true}, {.path = b, .enhanced_compression = true}}));
    ASSERT_EQ(loaded.images.size(), 3U);
    EXPECT_EQ(loaded.images[0].device, "OTHER-1");
    EXPECT_EQ(loaded.images[0].idcode, 77U);
    EXPECT_EQ(loaded.images[0].core, (BYTES{1, 2, 3}));
    EXPECT_EQ(loaded.images[1].device, first.device.name);
    EXPECT_EQ(loaded.images[1].core, first.data[1].second);
    EXPECT_GT(loaded.images[1].lz4_packets, 0U);
    EXPECT_EQ(loaded.images[2].core, (BYTES{1, 2, 3}));
}

TEST_F(configuration_stream, regions_of_a_partial_bitstream_are_announced)
{
    TEST_CONTENT content = small_content({1, 2, 3, 4, 5});
    content.kind = BITSTREAM_KIND::PMSF;
    content.regions = {{"left", 100, 2}, {"right", 4000, 3}};
    const LOADED_IMAGE image = load(build({{.path = add_file("a.pmsf", content)}})).images.at(0);
    EXPECT_TRUE(image.partial);
    ASSERT_EQ(image.regions.size(), 2U);
    EXPECT_EQ(image.regions[1].name, "right");
    EXPECT_EQ(image.regions[1].offset, 4000U);
    EXPECT_EQ(image.regions[1].length, 3U);
    EXPECT_EQ(image.core, (BYTES{1, 2, 3, 4, 5}));
}

TEST_F(configuration_stream, periphery_and_core_can_come_separately)
{
    const TEST_CONTENT content = full_content();
    const std::string path = add_file("a.sof", content);
    const LOADED_IMAGE periphery = load(build({{.path = path}}, STREAM_SELECTION::PERIPHERY)).images.at(0);
    EXPECT_EQ(periphery.periphery, content.data[0].second);
    EXPECT_TRUE(periphery.core.empty());
    EXPECT_EQ(periphery.firmware, content.data[2].second);
    EXPECT_EQ(periphery.bootloader, content.data[3].second);
    const LOADED_IMAGE core = load(build({{.path = path}}, STREAM_SELECTION::CORE)).images.at(0);
    EXPECT_EQ(core.core, content.data[1].second);
    EXPECT_TRUE(core.periphery.empty());
    EXPECT_TRUE(core.firmware.empty());

    const std::string core_only = add_file("b.sof", small_content({1}));
    EXPECT_EQ(refusal({{.path = core_only}}, STREAM_SELECTION::PERIPHERY),
              core_only + " holds no periphery data.");
}

TEST_F(configuration_stream, a_bootloader_file_replaces_that_of_the_bitstream)
{
    write_file(m_directory / "boot.bin", BYTES{9, 8, 7});
    const std::string path = add_file("a.sof", full_content());
    const LOADED_IMAGE image =
        load(build({{.path = path, .hps_path = m_directory / "boot.bin"}})).images.at(0);
    EXPECT_EQ(image.bootloader, (BYTES{9, 8, 7}));
    EXPECT_EQ(refusal({{.path = path, .hps_path = m_directory / "none.bin"}}),
              m_directory / "none.bin" + " cannot be opened: no such file.");
}

TEST_F(configuration_stream, equal_inputs_give_equal_bytes)
{
    const std::string a = add_file("a.sof", large_content(1));
    const std::string b = add_file("b.sof", large_content(1));
    for (const bool compressed : {false, true}) {
        const BYTES first = build({{.path = a, .compression = compressed}});
        EXPECT_EQ(first, build({{.path = a, .compression = compressed}}));
        EXPECT_EQ(first, build({{.path = b, .compression = compressed}})) << "the path has no influence";
    }
}

TEST_F(configuration_stream, any_part_of_a_stream_can_be_read_by_itself)
{
    const std::string path = add_file("a.sof", large_content(2));
    std::string message;
    const auto stream = build_configuration_stream({{.path = path, .compression = true}, {.path = path}},
                                                   m_directory.path(), message);
    ASSERT_NE(stream, nullptr) << message;
    const BYTES whole = bytes_of(*stream);
    std::mt19937 random(4);
    for (int round = 0; round < 200; ++round) {
        const std::size_t offset = random() % whole.size();
        BYTES part(std::min<std::size_t>(random() % 100000, whole.size() - offset));
        ASSERT_TRUE(stream->read(offset, part, message)) << message;
        ASSERT_TRUE(
            std::equal(part.begin(), part.end(), whole.begin() + static_cast<std::ptrdiff_t>(offset)));
    }
}

TEST_F(configuration_stream, nothing_is_left_in_the_spool_directory)
{
    const std::string path = add_file("a.sof", large_content(1));
    build({{.path = path, .compression = true}});
    EXPECT_EQ(m_directory.entries(), std::vector<std::string>{"a.sof"});
}

TEST_F(configuration_stream, a_plain_stream_needs_no_spool)
{
    const std::string path = add_file("a.sof", large_content(1));
    std::string message;
    EXPECT_NE(build_configuration_stream({{.path = path}}, m_directory / "missing", message), nullptr)
        << message;
    EXPECT_EQ(
        build_configuration_stream({{.path = path, .compression = true}}, m_directory / "missing", message),
        nullptr);
    EXPECT_THAT(message, HasSubstr(m_directory / "missing"));
}

TEST_F(configuration_stream, inputs_that_cannot_be_used_are_refused)
{
    const std::string good = add_file("a.sof", small_content({1}));
    EXPECT_EQ(refusal({}), "A bitstream is made of at least one file and at most 65535; this one names 0.");
    EXPECT_EQ(refusal({{.path = m_directory / "none.sof"}}),
              m_directory / "none.sof" + " cannot be opened: no such file.");
    EXPECT_EQ(refusal({{.path = good, .compression = true, .enhanced_compression = true}}),
              good + " is to be compressed in two ways; choose compression or enhanced compression.");
    write_file(m_directory / "text.sof", std::string("hello"));
    EXPECT_EQ(refusal({{.path = good}, {.path = m_directory / "text.sof"}}),
              m_directory / "text.sof" + " is not a bitstream file.");
}

TEST_F(configuration_stream, a_damaged_input_is_refused_with_the_place)
{
    BYTES file = make_file(small_content(BYTES(3 * MIB, 7)));
    const std::size_t core = file.size() - 32 - 3 * MIB;
    file[core + 2 * MIB] ^= 1;
    write_file(m_directory / "a.sof", file);
    for (const bool compressed : {false, true})
        EXPECT_EQ(refusal({{.path = m_directory / "a.sof", .compression = compressed}}),
                  m_directory / "a.sof" + " is damaged: the checksum of the core data (at offset " +
                      std::to_string(core) + ") does not fit.");
}

TEST_F(configuration_stream, memory_does_not_grow_with_the_stream)
{
    const std::string path = m_directory / "a.sof";
    std::string message;
    BITSTREAM_WRITER writer(BITSTREAM_KIND::SOF, {"A", 1});
    writer.add_section(SECTION_CORE, std::make_shared<SAMPLE_SOURCE>(1, 128 * MIB));
    const auto file = ATOMIC_FILE::create(path, 0600, message);
    ASSERT_TRUE(file && writer.write(*file, message) && file->commit(message)) << message;

    const PEAK_MEMORY memory;
    for (const bool compressed : {false, true}) {
        const auto stream = build_configuration_stream({{.path = path, .compression = compressed}},
                                                       m_directory.path(), message);
        ASSERT_NE(stream, nullptr) << message;
        STREAM_FACTS facts;
        EXPECT_TRUE(read_configuration_stream(*stream, true, facts, nullptr, message)) << message;
        EXPECT_EQ(facts.images.at(0).part_length[1], 128 * MIB);
    }
    EXPECT_LT(memory.kib(), 32 * 1024U);
}

TEST_F(configuration_stream, the_reader_tells_what_a_stream_holds)
{
    const TEST_CONTENT content = full_content();
    const BYTES stream = build({{.path = add_file("a.sof", content)},
                                {.path = add_file("b.sof", large_content(1)), .compression = true}});
    STREAM_FACTS facts;
    COLLECTED collected;
    std::string message;
    ASSERT_TRUE(read_configuration_stream(MEMORY_SOURCE(stream), true, facts, &collected, message))
        << message;
    EXPECT_EQ(facts.version, 1U);
    EXPECT_EQ(facts.size, stream.size());
    ASSERT_EQ(facts.images.size(), 2U);
    EXPECT_EQ(facts.images[0].device, content.device);
    EXPECT_EQ(facts.images[0].scheme, content.scheme);
    EXPECT_EQ(facts.images[0].options, content.options);
    EXPECT_NE(facts.images[0].option_word, 0U);
    EXPECT_EQ(facts.images[0].option_block.fallback_address, 0x12345678U);
    EXPECT_EQ(facts.images[0].part_length, (std::array<std::uint64_t, 4>{1000, 5000, 300, 1}));
    EXPECT_EQ(facts.images[0].stored_length, facts.images[0].part_length);
    EXPECT_LT(facts.images[1].stored_length[0], facts.images[1].part_length[0]);
    EXPECT_EQ(facts.images[1].packets_by_method, (std::array<std::uint64_t, 3>{1, 3, 0}));
    EXPECT_TRUE(std::equal(facts.digest.begin(), facts.digest.end(), stream.end() - 36));
    EXPECT_EQ((collected.parts[{0, STREAM_PART::CORE}]), content.data[1].second);
    EXPECT_EQ((collected.parts[{1, STREAM_PART::CORE}]), large_content(1).data[1].second);
}

TEST_F(configuration_stream, erased_flash_may_follow_only_where_the_caller_allows_it)
{
    BYTES stream = build({{.path = add_file("a.sof", small_content({1}))}});
    const std::size_t size = stream.size();
    stream.resize(size + 100, 0xFF);
    STREAM_FACTS facts;
    std::string message;
    EXPECT_TRUE(read_configuration_stream(MEMORY_SOURCE(stream), false, facts, nullptr, message)) << message;
    EXPECT_EQ(facts.size, size);
    EXPECT_EQ(load(stream).used, size);
    EXPECT_EQ(reading_refusal(stream), "The configuration stream is damaged at offset " +
                                           std::to_string(size) + ": 100 bytes follow the end packet.");
}

TEST_F(configuration_stream, a_flipped_bit_is_located_at_its_packet)
{
    const BYTES good = build({{.path = add_file("a.sof", full_content())}});
    // Packets: begin at 4, device at 16; find all by their lengths.
    std::vector<std::size_t> starts;
    for (std::size_t at = 4; at < good.size();
         at += 8 + good[at + 1] + 256U * good[at + 2] + 65536U * good[at + 3])
        starts.push_back(at);
    for (std::size_t offset = 0; offset < good.size(); ++offset) {
        BYTES stream = good;
        stream[offset] ^= static_cast<std::uint8_t>(1U << offset % 8);
        const std::string message = reading_refusal(stream);
        LOADED_STREAM loaded;
        std::string error;
        ASSERT_FALSE(load_configuration_stream(stream, loaded, error)) << offset;
        if (offset < 4) {
            ASSERT_EQ(message, "The configuration stream is damaged at offset 0: there is no sync word.");
            continue;
        }
        const std::size_t start = *std::prev(std::upper_bound(starts.begin(), starts.end(), offset));
        ASSERT_THAT(message, StartsWith("The configuration stream is damaged at offset " +
                                        std::to_string(start) + ":"));
    }
}

TEST_F(configuration_stream, a_stream_cut_off_anywhere_is_refused)
{
    const BYTES good = build({{.path = add_file("a.sof", full_content())}});
    for (std::size_t length = 0; length < good.size(); ++length) {
        const std::string message =
            reading_refusal(BYTES(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)));
        ASSERT_THAT(message, testing::AnyOf(HasSubstr("there is no sync word."),
                                            HasSubstr("the stream ends within the packet."),
                                            HasSubstr("the stream ends without an end packet.")));
    }
}

TEST_F(configuration_stream, an_exchanged_packet_is_found_by_the_digest)
{
    const BYTES good = build({{.path = add_file("a.sof", small_content({1, 2, 3}))}});
    const BYTES other = build({{.path = add_file("a.sof", small_content({1, 2, 4}))}});
    ASSERT_EQ(good.size(), other.size());
    BYTES mixed(other.begin(), other.end() - 40);
    mixed.insert(mixed.end(), good.end() - 40, good.end());
    EXPECT_EQ(reading_refusal(mixed), "The configuration stream is damaged at offset " +
                                          std::to_string(good.size() - 40) +
                                          ": the digest does not fit the stream.");
}

TEST_F(configuration_stream, packets_that_break_the_rules_are_refused)
{
    const auto refused = [](const std::vector<std::pair<std::uint8_t, BYTES>>& packets) {
        BYTES stream = SYNC;
        for (const auto& [opcode, payload] : packets)
            append_packet(stream, opcode, payload);
        const std::string message = reading_refusal(stream);
        return message.substr(message.find(": ") + 2);
    };
    const std::pair<std::uint8_t, BYTES> begin = {0x01, begin_payload(1)};
    const std::pair<std::uint8_t, BYTES> device = {0x02, device_payload(4)};
    EXPECT_EQ(refused({}), "the stream ends without an end packet.");
    EXPECT_EQ(refused({device}), "the stream does not start with a begin packet.");
    EXPECT_EQ(refused({{0x01, begin_payload(0)}}), "the stream does not start with a begin packet.");
    EXPECT_EQ(refused({{0x01, {2, 0, 1, 0}}}), "the stream has version 2; this program reads version 1.");
    EXPECT_EQ(refused({begin, begin}), "the packet has the unknown opcode 1.");
    EXPECT_EQ(refused({begin, {0x55, {}}}), "the packet has the unknown opcode 85.");
    EXPECT_EQ(refused({begin, {0x02, {1, 2, 3}}}), "the device packet is malformed.");
    EXPECT_EQ(refused({begin, {0x03, encode_scheme(1)}}), "the packet with opcode 3 is out of place.");
    EXPECT_EQ(refused({begin, device, {0x04, {0, 0}}, {0x03, encode_scheme(1)}}),
              "the packet with opcode 3 is out of place.");
    EXPECT_EQ(refused({begin, device, {0x03, encode_scheme(1)}, {0x03, encode_scheme(1)}}),
              "the packet with opcode 3 is out of place.");
    EXPECT_EQ(refused({begin, {0x10, frames_payload(1, 1, 0, {5})}}),
              "frames come before the device packet.");
    EXPECT_EQ(refused({begin, device, {0x10, frames_payload(4, 1, 0, {5})}}),
              "the frames packet is malformed.");
    EXPECT_EQ(refused({begin, device, {0x10, frames_payload(1, 0, 0, {})}}),
              "the frames packet is malformed.");
    EXPECT_EQ(refused({begin, device, {0x11, frames_payload(1, UINT32_MAX, 0, {5})}}),
              "the frames packet is malformed.");
    EXPECT_EQ(refused({begin, device, {0x10, frames_payload(1, 1, 1, {5})}}),
              "the frames of the core data are for offset 1 and out of order.");
    EXPECT_EQ(refused({begin, device, {0x10, frames_payload(0, 1, 0, {5})}}),
              "the frames exceed the 0 bytes announced for the periphery data.");
    EXPECT_EQ(refused({begin, device, {0x10, frames_payload(1, 3, 0, {5})}}),
              "the plain frames do not decode to 3 bytes.");
    EXPECT_EQ(refused({begin, device, {0x11, frames_payload(1, 3, 0, {0xFF, 0xFF})}}),
              "the LZ4 frames do not decode to 3 bytes.");
    EXPECT_EQ(refused({begin, device, {0x12, frames_payload(1, 3, 0, {0xFF, 0xFF})}}),
              "the Zstandard frames do not decode to 3 bytes.");
    EXPECT_EQ(refused({begin, device, {0x10, frames_payload(1, 1, 0, {5})}, {0x7F, BYTES(32)}}),
              "image 1 has 1 of the 4 bytes announced for the core data.");
    EXPECT_EQ(refused({begin, device, device}), "image 1 has 0 of the 4 bytes announced for the core data.");
    EXPECT_EQ(refused({begin, {0x02, device_payload(0)}, {0x02, device_payload(0)}}),
              "there are more images than the 1 announced.");
    EXPECT_EQ(refused({{0x01, begin_payload(2)}, {0x02, device_payload(0)}, {0x7F, BYTES(32)}}),
              "the stream ends after 1 of 2 images.");
    EXPECT_EQ(refused({begin, {0x02, device_payload(0)}, {0x7F, BYTES(31)}}),
              "the digest does not fit the stream.");
}

TEST_F(configuration_stream, a_length_beyond_the_limit_takes_no_memory)
{
    BYTES stream = SYNC;
    stream.insert(stream.end(), {0x01, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(
        reading_refusal(stream),
        "The configuration stream is damaged at offset 4: the packet claims a length of 16777215 bytes.");
}

TEST_F(configuration_stream, mutations_never_pass_as_good_streams)
{
    std::mt19937 random(12);
    const BYTES good = build({{.path = add_file("a.sof", full_content()), .compression = true}});
    for (int round = 0; round < 2000; ++round) {
        BYTES stream = good;
        const auto at = stream.begin() + static_cast<std::ptrdiff_t>(random() % stream.size());
        switch (random() % 3) {
        case 0:
            *at = static_cast<std::uint8_t>(random());
            break;
        case 1:
            stream.erase(at);
            break;
        default:
            stream.insert(at, static_cast<std::uint8_t>(random()));
        }
        if (stream == good)
            continue;
        ASSERT_THAT(reading_refusal(stream), StartsWith("The configuration stream is damaged at offset "));
    }
}

} // namespace
