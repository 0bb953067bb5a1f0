// Files whose checksums are right and whose contents lie: what damage cannot make and malice can. A reader
// that trusts a sealed length, count or offset fails here.

#include "format_test_support.h"
#include "hex_format.h"
#include "jam_format.h"
#include "jbc_format.h"
#include "map_format.h"
#include "pof_decoder.h"
#include "pof_format.h"
#include "stapl_player.h"
#include "svf_format.h"
#include "ttf_format.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
const POF_FORMAT POF;
const JIC_FORMAT JIC;
const JBC_FORMAT JBC;
const JAM_FORMAT JAM;
const SVF_FORMAT SVF;
const HEX_FORMAT HEX;
const TTF_FORMAT TTF;
const MAP_FORMAT MAP;

/// Overwrites, cuts out, doubles or extends something.
void damage(BYTES& bytes, DICE& random)
{
    const std::size_t at = bytes.empty() ? 0 : random() % bytes.size();
    const std::size_t length = std::min<std::size_t>(1 + random() % 12, bytes.size() - at);
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    const auto end = begin + static_cast<std::ptrdiff_t>(length);
    switch (random() % 5) {
    case 0: { // a number of 1, 2, 4 or 8 bytes at its edges
        constexpr std::uint64_t EDGES[] = {0,
                                           1,
                                           0x7F,
                                           0xFF,
                                           0xFFFF,
                                           0x7FFFFFFF,
                                           0xFFFFFFFF,
                                           0x100000000,
                                           0x7FFFFFFFFFFFFFFF,
                                           0xFFFFFFFFFFFFFFFF};
        const std::uint64_t value = EDGES[random() % std::size(EDGES)];
        const std::size_t size = std::min<std::size_t>(std::size_t{1} << random() % 4, bytes.size() - at);
        for (std::size_t i = 0; i != size; ++i)
            bytes[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
        break;
    }
    case 1:
        bytes.erase(begin, end);
        break;
    case 2: {
        const BYTES piece(begin, end);
        bytes.insert(begin, piece.begin(), piece.end());
        break;
    }
    case 3:
        if (!bytes.empty())
            bytes[at] ^= static_cast<std::uint8_t>(1u << random() % 8);
        break;
    default:
        bytes.resize(bytes.size() + random() % 9);
    }
}

/// Damage as a text takes it: numbers change their value too.
void damage_text(std::string& text, DICE& random)
{
    constexpr const char* NUMBERS[] = {"0",  "1",        "-1",         "8",           "4294967296",
                                       "FF", "FFFFFFFF", "2147483648", "0xFFFFFFFFF", "99999999999999999999"};
    const std::size_t digit = text.find_first_of("0123456789", text.empty() ? 0 : random() % text.size());
    if (random() % 2 == 0 && digit != std::string::npos) {
        const std::size_t end = std::min(text.find_first_not_of("0123456789ABCDEFx", digit), text.size());
        text.replace(digit, end - digit, NUMBERS[random() % std::size(NUMBERS)]);
        return;
    }
    BYTES bytes = bytes_of(text);
    damage(bytes, random);
    text = text_of(bytes);
}

struct PART {
    std::string tag;
    BYTES payload;
};

/// The chunks of a file of our own frame, changed and sealed again.
BYTES lying_chunks(const BYTES& good, DICE& random)
{
    std::vector<PART> parts;
    const auto number = [&good](std::size_t at) {
        return good[at] | std::size_t{good[at + 1]} << 8 | std::size_t{good[at + 2]} << 16;
    };
    for (std::size_t at = 8; at != good.size(); at += 12 + number(at + 4)) {
        const auto begin = good.begin() + static_cast<std::ptrdiff_t>(at);
        parts.push_back(
            {{begin, begin + 4}, {begin + 8, begin + 8 + static_cast<std::ptrdiff_t>(number(at + 4))}});
    }
    for (std::uint32_t count = 1 + random() % 3; count-- != 0;) {
        const std::size_t one = random() % parts.size();
        const std::size_t other = random() % parts.size();
        switch (random() % 8) {
        case 0:
            std::swap(parts[one], parts[other]);
            break;
        case 1:
            parts.insert(parts.begin() + static_cast<std::ptrdiff_t>(one), PART(parts[other]));
            break;
        case 2:
            parts[one].tag = parts[other].tag;
            break;
        default:
            damage(parts[one].payload, random);
        }
    }
    BYTES file(good.begin(), good.begin() + 8);
    const auto put = [&file](std::size_t value) {
        for (unsigned i = 0; i != 4; ++i)
            file.push_back(static_cast<std::uint8_t>(value >> 8 * i));
    };
    for (const PART& part : parts) {
        const std::size_t begin = file.size();
        file.insert(file.end(), part.tag.begin(), part.tag.end());
        put(part.payload.size());
        file.insert(file.end(), part.payload.begin(), part.payload.end());
        put(plain_crc32(file.data() + begin, file.size() - begin));
    }
    return file;
}

std::string hex(std::uint64_t value, int digits)
{
    char text[32];
    std::snprintf(text, sizeof text, "%0*llX", digits, static_cast<unsigned long long>(value));
    return text;
}

BYTES lying_jam(const BYTES& good, DICE& random)
{
    std::string text = text_of(good);
    text.resize(text.rfind("CRC "));
    damage_text(text, random);
    return bytes_of(text + "CRC " + hex(plain_stapl_crc(text), 4) + ";\n");
}

BYTES lying_svf(const BYTES& good, DICE& random)
{
    std::string text = text_of(good);
    const std::size_t seal = text.rfind("! CRC-32");
    const std::string words = text.substr(seal, text.rfind(": ") + 2 - seal);
    text.resize(seal);
    damage_text(text, random);
    text += words;
    return bytes_of(text + hex(plain_crc32(bytes_of(text).data(), text.size()), 8) + "\n");
}

/// Each line keeps a right checksum.
BYTES lying_hex(const BYTES& good, DICE& random)
{
    std::string file;
    const std::string text = text_of(good);
    const auto lines = static_cast<std::uint32_t>(std::count(text.begin(), text.end(), '\n'));
    std::uint32_t liar = random() % lines;
    for (std::size_t at = 0; at != text.size(); at = text.find('\n', at) + 1) {
        BYTES record;
        for (std::size_t i = at + 1; text[i + 2] != '\n'; i += 2)
            record.push_back(static_cast<std::uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
        if (liar-- == 0)
            damage(record, random);
        unsigned sum = 0;
        file += ":";
        for (const std::uint8_t byte : record) {
            file += hex(byte, 2);
            sum += byte;
        }
        file += hex(0x100000 - sum, 2).substr(hex(0x100000 - sum, 2).size() - 2) + "\n";
    }
    return bytes_of(file);
}

BYTES lying_text(const BYTES& good, DICE& random)
{
    std::string text = text_of(good);
    damage_text(text, random);
    return bytes_of(text);
}

struct READER {
    const char* name;
    const FORMAT& format;
    BYTES (*lie)(const BYTES& good, DICE& random);

    friend void PrintTo(const READER& row, std::ostream* out) { *out << row.name; }
};

class lying_file : public testing::TestWithParam<READER>
{
};

const READER READERS[] = {{"pof", POF, lying_chunks}, {"jic", JIC, lying_chunks}, {"jbc", JBC, lying_chunks},
                          {"jam", JAM, lying_jam},    {"svf", SVF, lying_svf},    {"hex", HEX, lying_hex},
                          {"ttf", TTF, lying_text},   {"map", MAP, lying_text}};
INSTANTIATE_TEST_SUITE_P(readers, lying_file, testing::ValuesIn(READERS),
                         [](const auto& row) { return row.param.name; });

/// Counts and sums up; a file of a few hundred bytes may stand for gigabytes of fill, of which the begin
/// does.
class MEASURE final : public BYTE_SINK
{
public:
    bool write(std::span<const std::uint8_t> bytes, std::string& message) override
    {
        if (size + bytes.size() > 1 << 20) {
            message = "That is enough.";
            return false;
        }
        content.insert(content.end(), bytes.begin(), bytes.end());
        size += bytes.size();
        return true;
    }
    BYTES content;
    std::size_t size = 0;
};
} // namespace

TEST_P(lying_file, is_refused_or_read_as_what_it_says)
{
    const FORMAT& format = GetParam().format;
    BYTES bytes = make_bytes(700, 3);
    std::fill(bytes.begin() + 100, bytes.begin() + 400, std::uint8_t(0xFF));
    const MEMORY_SOURCE image(bytes);
    FORMAT_REQUEST request;
    request.image = &image;
    request.device = "MX25L25645G";
    request.target = {"BS1L15", 0x10A15BC7, 10};
    request.flash = {{0xC2, 0x20, 0x19}, 4, 65536, 256};
    request.start_address = &format == &HEX ? 0x1FFF8 : 0;
    if (&format == &POF || &format == &JIC || &format == &MAP)
        request.regions = {{"P1", 0, 100, 255, true, 1, "top.sof", 0x12345678},
                           {"P2", 256, 444, 699, false, 0, "data.bin", 0x9ABCDEF0}};
    const BYTES good = write_format(format, request);
    DICE random(77);
    unsigned accepted = 0;
    for (int round = 0; round != 6000; ++round) {
        const MEMORY_SOURCE file(GetParam().lie(good, random));
        FORMAT_FACTS facts;
        std::string refusal;
        std::string message;
        MEASURE decoded;
        const bool inspected = format.inspect(file, facts, refusal);
        ASSERT_EQ(inspected, refusal.empty());
        ASSERT_TRUE(inspected || refusal.ends_with(".")) << refusal;
        accepted += inspected ? 1 : 0;
        if (&format == &MAP)
            continue;
        const bool was_decoded = format.decode(file, decoded, message);
        if (message == "That is enough.")
            continue;
        ASSERT_EQ(was_decoded, inspected) << message << refusal;
        if (inspected && fact(facts, "image CRC-32") != "(none)") {
            ASSERT_EQ(fact(facts, "image CRC-32"),
                      "0x" + hex(plain_crc32(decoded.content.data(), decoded.size), 8));
        }
    }
    EXPECT_GT(accepted, 0u);
    EXPECT_LT(accepted, 6000u);
}
