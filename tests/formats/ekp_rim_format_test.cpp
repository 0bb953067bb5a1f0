#include "ekp_format.h"
#include "format_test_support.h"
#include "rim_format.h"
#include "stream_key.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

const EKP_FORMAT EKP;
const RIM_FORMAT RIM;

struct KEYS {
    KEYS()
    {
        for (const BYTES* key : {&long_key, &short_key}) {
            KEY_INFO info;
            info.key_bits = static_cast<unsigned>(key->size()) * 8;
            info.place = KEY_PLACE::FUSES;
            info.id = STREAM_KEY::derive(SECRET_BYTES(key->begin(), key->end()))->id();
            info.fuse_options[static_cast<std::size_t>(FUSE_OPTION::NO_JTAG)] = 3;
            request.keys.push_back({"CA3M050", 0x20B05BC7, info, *key});
        }
    }
    KEYS(const KEYS&) = delete;
    BYTES long_key = make_bytes(32, 5);
    BYTES short_key = make_bytes(16, 6);
    FORMAT_REQUEST request;
};

FORMAT_REQUEST measurements()
{
    IMAGE_MEASUREMENTS first;
    first.device = "ZR9A012";
    first.idcode = 0x11212BC7;
    first.firmware.emplace().fill(0x01);
    first.bootloader.emplace().fill(0x02);
    first.design.fill(0xAB);
    first.options.fill(0x04);
    IMAGE_MEASUREMENTS second;
    second.device = "ZR9A028";
    second.idcode = 0x11228BC7;
    second.partial = true;
    FORMAT_REQUEST request;
    request.measurements = {first, second};
    return request;
}

/// Any of the digits, in capitals or not.
bool shows(const FORMAT_FACTS& facts, const BYTES& key)
{
    std::string digits;
    for (const std::uint8_t byte : key) {
        digits += "0123456789abcdef"[byte / 16];
        digits += "0123456789abcdef"[byte % 16];
    }
    return std::any_of(facts.facts.begin(), facts.facts.end(), [&](const FORMAT_FACTS::FACT& one) {
        std::string value = one.value;
        std::transform(value.begin(), value.end(), value.begin(),
                       [](char c) { return c >= 'A' && c <= 'F' ? static_cast<char>(c + 32) : c; });
        for (std::size_t at = 0; at + 8 <= digits.size(); at += 2)
            if (value.find(digits.substr(at, 8)) != std::string::npos)
                return true;
        return false;
    });
}

std::uint32_t plain_crc(const BYTES& bytes, std::size_t size)
{
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::size_t i = 0; i < size; ++i) {
        crc ^= bytes[i];
        for (unsigned bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc % 2 == 1 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

} // namespace

TEST(ekp, the_file_is_as_its_page_says)
{
    KEYS keys;
    keys.request.keys.pop_back();
    const BYTES file = write_format(EKP, keys.request);
    const BYTES magic = {0x89, 'I',  'W',  'K',  0x0D, 0x0A, 0x1A, 0x0A, 1,   0,   1,   0,
                         0xC7, 0x5B, 0xB0, 0x20, 7,    'C',  'A',  '3',  'M', '0', '5', '0'};
    ASSERT_EQ(file.size(), magic.size() + 24 + 32 + 4);
    EXPECT_TRUE(std::equal(magic.begin(), magic.end(), file.begin()));
    const auto key = file.begin() + static_cast<std::ptrdiff_t>(magic.size() + 24);
    EXPECT_EQ(BYTES(key, key + 32), keys.long_key);
    const std::uint32_t crc = plain_crc(file, file.size() - 4);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(file[file.size() - 4 + i], static_cast<std::uint8_t>(crc >> 8 * i));
}

TEST(ekp, inspection_tells_all_but_the_keys)
{
    const KEYS keys;
    const FORMAT_FACTS facts = inspect_format(EKP, write_format(EKP, keys.request));
    EXPECT_EQ(fact(facts, "keys"), "2");
    EXPECT_EQ(fact(facts, "device"), "CA3M050");
    EXPECT_EQ(fact(facts, "IDCODE"), "0x20B05BC7");
    EXPECT_EQ(fact(facts, "key length"), "256 bits");
    EXPECT_EQ(fact(facts, "key length 2"), "128 bits");
    EXPECT_EQ(fact(facts, "key place"), "fuses");
    EXPECT_EQ(fact(facts, "key id 2"), key_id_text(keys.request.keys[1].info.id));
    EXPECT_EQ(fact(facts, std::string("fuse option ") + fuse_option_name(FUSE_OPTION::NO_JTAG)), "3");
    EXPECT_FALSE(shows(facts, keys.long_key));
    EXPECT_FALSE(shows(facts, keys.short_key));
}

TEST(ekp, other_keys_are_told_from_damage)
{
    KEYS keys;
    const BYTES file = write_format(EKP, keys.request);
    EXPECT_EQ(verify_format(EKP, keys.request, file), "");
    keys.request.keys.pop_back();
    EXPECT_EQ(verify_format(EKP, keys.request, file),
              "The key programming file holds other keys than those of the bitstreams.");
}

TEST(ekp, a_file_that_lies_under_a_right_checksum_is_refused)
{
    const KEYS keys;
    const BYTES good = write_format(EKP, keys.request);
    DICE random(3);
    unsigned refused = 0;
    for (unsigned round = 0; round < 6000; ++round) {
        BYTES bad(good.begin(), good.end() - 4);
        for (unsigned count = 1 + random() % 3; count-- != 0;) {
            const std::size_t at = 8 + random() % (bad.size() - 8);
            const auto place = bad.begin() + static_cast<std::ptrdiff_t>(at);
            switch (random() % 3) {
            case 0:
                *place = static_cast<std::uint8_t>(random() % 2 == 0 ? 0xFF : random());
                break;
            case 1:
                bad.erase(place);
                break;
            default:
                bad.insert(place, static_cast<std::uint8_t>(random()));
            }
        }
        const std::uint32_t crc = plain_crc(bad, bad.size());
        for (std::size_t i = 0; i < 4; ++i)
            bad.push_back(static_cast<std::uint8_t>(crc >> 8 * i));
        FORMAT_FACTS facts;
        std::string message;
        const bool read = EKP.inspect(MEMORY_SOURCE(bad), facts, message);
        ASSERT_EQ(read, message.empty());
        ASSERT_TRUE(read || message.ends_with('.')) << message;
        ASSERT_FALSE(shows(facts, keys.long_key));
        refused += read ? 0 : 1;
    }
    EXPECT_GT(refused, 3000U);
    EXPECT_LT(refused, 6000U);
}

TEST(rim, the_file_is_as_its_page_says)
{
    const FORMAT_REQUEST request = measurements();
    const auto digits = [](const char* pair) {
        std::string text;
        for (unsigned i = 0; i < 48; ++i)
            text += pair;
        return text;
    };
    EXPECT_EQ(text_of(write_format(RIM, request)),
              "imagewright-rim 1\nimages 2\ndevice ZR9A012 0x11212BC7\nkind full\nfirmware sha384 " +
                  digits("01") + "\nbootloader sha384 " + digits("02") + "\ndesign sha384 " + digits("ab") +
                  "\noptions sha384 " + digits("04") +
                  "\ndevice ZR9A028 0x11228BC7\nkind partial\ndesign sha384 " + digits("00") +
                  "\noptions sha384 " + digits("00") + "\n");
    const FORMAT_FACTS facts = inspect_format(RIM, write_format(RIM, request));
    EXPECT_EQ(fact(facts, "device"), "ZR9A012");
    EXPECT_EQ(fact(facts, "image 2"), "partial");
    EXPECT_EQ(fact(facts, "design SHA-384"), digits("ab"));
    EXPECT_EQ(fact(facts, "firmware SHA-384 2"), "(none)");
    EXPECT_EQ(fact(facts, "signed"), "no");
}

TEST(rim, every_other_spelling_is_refused_with_its_line)
{
    const std::string good = text_of(write_format(RIM, measurements()));
    const auto refusal = [](const std::string& text) {
        FORMAT_FACTS facts;
        std::string message;
        EXPECT_FALSE(RIM.inspect(MEMORY_SOURCE(bytes_of(text)), facts, message)) << text;
        return message;
    };
    const auto changed = [&good](const std::string& from, const std::string& to) {
        std::string text = good;
        return text.replace(text.find(from), from.size(), to);
    };
    EXPECT_EQ(refusal(""), "The manifest is damaged in line 1.");
    EXPECT_EQ(refusal(changed("images 2", "images 02")), "The manifest is damaged in line 2.");
    EXPECT_EQ(refusal(changed("images 2", "images 0")), "The manifest is damaged in line 2.");
    EXPECT_EQ(refusal(changed("0x11212BC7", "0x11212bc7")), "The manifest is damaged in line 3.");
    EXPECT_EQ(refusal(changed("kind full", "kind half")), "The manifest is damaged in line 4.");
    EXPECT_EQ(refusal(changed("sha384 ab", "sha384 AB")), "The manifest is damaged in line 7.");
    EXPECT_NE(refusal(good + "\n"), "");
    EXPECT_NE(refusal(good + "key P-256 00\n"), "");
    EXPECT_NE(refusal(changed("images 2", "images 65536")), "");
    EXPECT_NE(refusal(changed("images 2", "images 3")), "");
}

TEST(rim, neither_format_carries_an_image)
{
    const KEYS keys;
    std::string message;
    decode_format(EKP, write_format(EKP, keys.request), &message);
    EXPECT_EQ(message, "A key programming file carries keys and no image.");
    decode_format(RIM, write_format(RIM, measurements()), &message);
    EXPECT_EQ(message, "A manifest carries measurements and no image.");
}
