#include "flash_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace
{
using BYTES = std::vector<std::uint8_t>;

std::shared_ptr<MEMORY_SOURCE> content(std::size_t size, std::uint8_t value)
{
    return std::make_shared<MEMORY_SOURCE>(BYTES(size, value));
}

BYTES whole(const FLASH_IMAGE& image)
{
    BYTES bytes(image.size());
    std::string message;
    EXPECT_TRUE(image.read(0, bytes, message)) << message;
    return bytes;
}
} // namespace

TEST(flash_image, what_no_content_covers_reads_as_fill)
{
    FLASH_IMAGE image(10);
    EXPECT_EQ(whole(image), BYTES(10, 0xFF));
    std::string message;
    ASSERT_TRUE(image.add(6, content(2, 2), message));
    ASSERT_TRUE(image.add(1, content(3, 1), message));
    EXPECT_EQ(whole(image), (BYTES{0xFF, 1, 1, 1, 0xFF, 0xFF, 2, 2, 0xFF, 0xFF}));
    std::uint64_t begin = 9;
    std::uint64_t end = 9;
    image.used_range(begin, end);
    EXPECT_EQ(begin, 1u);
    EXPECT_EQ(end, 8u);
}

TEST(flash_image, an_empty_image_has_no_used_range)
{
    const FLASH_IMAGE image(10);
    std::uint64_t begin = 9;
    std::uint64_t end = 9;
    image.used_range(begin, end);
    EXPECT_EQ(begin, 0u);
    EXPECT_EQ(end, 0u);
}

TEST(flash_image, empty_content_is_laid_nowhere)
{
    FLASH_IMAGE image(10);
    std::string message;
    EXPECT_TRUE(image.add(100, content(0, 1), message));
    EXPECT_TRUE(image.extents().empty());
}

TEST(flash_image, overlaps_are_refused_with_both_ranges_and_touching_is_none)
{
    FLASH_IMAGE image(0x100);
    std::string message;
    ASSERT_TRUE(image.add(0x20, content(0x10, 1), message));
    for (const std::uint64_t offset : {0x11u, 0x20u, 0x28u, 0x2Fu}) {
        EXPECT_FALSE(image.add(offset, content(0x10, 2), message));
        EXPECT_NE(message.find(" overlaps the content at 0x00000020 to 0x0000002F; move one of them."),
                  std::string::npos)
            << message;
    }
    EXPECT_FALSE(image.add(0x10, content(0x40, 2), message));
    EXPECT_EQ(message,
              "The content at 0x00000010 to 0x0000004F overlaps the content at 0x00000020 to 0x0000002F; "
              "move one of them.");
    EXPECT_TRUE(image.add(0x10, content(0x10, 2), message));
    EXPECT_TRUE(image.add(0x30, content(0xD0, 2), message));
    EXPECT_EQ(image.extents().size(), 3u);
}

TEST(flash_image, content_that_leaves_the_device_is_refused)
{
    FLASH_IMAGE image(0x100);
    std::string message;
    EXPECT_FALSE(image.add(0xFF, content(2, 1), message));
    EXPECT_EQ(message,
              "The content at 0x000000FF to 0x00000100 leaves the flash device, which has 0x00000000 to "
              "0x000000FF; move it or choose a larger device.");
    EXPECT_FALSE(image.add(~std::uint64_t(0), content(2, 1), message));
    EXPECT_EQ(message,
              "The content at 0xFFFFFFFFFFFFFFFF to 0xFFFFFFFFFFFFFFFE leaves the flash device, which has "
              "0x00000000 to 0x000000FF; move it or choose a larger device.");
    EXPECT_FALSE(FLASH_IMAGE(0).add(0, content(1, 1), message));
    EXPECT_EQ(
        message,
        "The content at 0x00000000 to 0x00000000 leaves the flash device, which has no bytes; move it or "
        "choose a larger device.");
    EXPECT_TRUE(image.extents().empty());
}

TEST(flash_image, any_range_reads_as_from_one_buffer)
{
    std::mt19937 random(1);
    const auto roll = [&random](std::size_t sides) { return static_cast<std::size_t>(random()) % sides; };
    FLASH_IMAGE image(5000);
    BYTES plain(5000, 0xFF);
    std::string message;
    for (int i = 0; i != 200; ++i) {
        const std::size_t at = roll(5000);
        BYTES bytes(roll(60));
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        if (image.add(at, std::make_shared<MEMORY_SOURCE>(bytes), message))
            std::copy(bytes.begin(), bytes.end(), plain.begin() + static_cast<std::ptrdiff_t>(at));
    }
    ASSERT_GT(image.extents().size(), 30u);
    for (int i = 0; i != 2000; ++i) {
        const std::size_t from = roll(5001);
        BYTES part(roll(5001 - from));
        ASSERT_TRUE(image.read(from, part, message)) << message;
        ASSERT_TRUE(std::equal(part.begin(), part.end(), plain.begin() + static_cast<std::ptrdiff_t>(from)));
    }
    BYTES part(2);
    EXPECT_FALSE(image.read(4999, part, message));
    EXPECT_EQ(message, "The 2 bytes at 0x00001387 do not lie within the flash image.");
}
