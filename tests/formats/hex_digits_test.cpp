#include "format_test_support.h"
#include "hex_digits.h"

#include <gtest/gtest.h>

TEST(hex_digits, vector_and_portable_forms_write_the_same)
{
    for (std::uint32_t seed = 0; seed != 2000; ++seed) {
        const BYTES bytes = make_bytes(16, seed);
        char fast[32];
        char plain[32];
        ASSERT_EQ(hex_digits::encode_16(bytes.data(), fast),
                  hex_digits::portable::encode_16(bytes.data(), plain));
        ASSERT_EQ(std::string(fast, 32), std::string(plain, 32));
    }
}

TEST(hex_digits, vector_and_portable_forms_read_the_same_at_every_place_and_for_every_character)
{
    const BYTES bytes = make_bytes(16, 77);
    char text[32];
    hex_digits::encode_16(bytes.data(), text);
    for (unsigned place = 0; place != 32; ++place)
        for (unsigned character = 0; character != 256; ++character) {
            BYTES changed(text, text + 32);
            changed[place] = static_cast<std::uint8_t>(character);
            BYTES fast(16);
            BYTES plain(16);
            unsigned fast_sum = 0;
            unsigned plain_sum = 0;
            const bool valid = hex_digits::decode_16(changed.data(), fast.data(), fast_sum);
            ASSERT_EQ(valid, hex_digits::portable::decode_16(changed.data(), plain.data(), plain_sum));
            ASSERT_EQ(valid, std::string("0123456789ABCDEF").find(static_cast<char>(character)) !=
                                 std::string::npos);
            if (valid) {
                ASSERT_EQ(fast, plain);
                ASSERT_EQ(fast_sum, plain_sum);
            }
        }
}
