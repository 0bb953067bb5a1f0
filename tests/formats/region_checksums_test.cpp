#include "byte_source.h"
#include "region_checksums.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

namespace
{

/// An image that counts what is read of it, and fails where it is told to.
class COUNTING_IMAGE final : public BYTE_SOURCE
{
public:
    explicit COUNTING_IMAGE(std::size_t size) : m_bytes(size)
    {
        for (std::size_t i = 0; i < size; ++i) {
            m_bytes[i] = static_cast<std::uint8_t>(i * 7 + (i >> 8));
        }
    }
    std::uint64_t size() const override { return m_bytes.size(); }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override
    {
        if (fails) {
            message = "The image is gone.";
            return false;
        }
        bytes_read += into.size();
        std::copy_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(offset), into.size(), into.begin());
        return true;
    }
    std::uint32_t crc(std::size_t start, std::size_t length) const
    {
        return crc32(std::span(m_bytes).subspan(start, length));
    }

    mutable std::atomic<std::size_t> bytes_read = 0;
    bool fails = false;

private:
    std::vector<std::uint8_t> m_bytes;
};

IMAGE_REGION region(std::uint64_t start, std::uint64_t length)
{
    IMAGE_REGION region;
    region.start = start;
    region.length = length;
    region.block_end = start + length;
    return region;
}

class REGION_CHECKSUMS_TEST : public ::testing::Test
{
protected:
    void expect_all()
    {
        for (std::size_t i = 0; i < regions.size(); ++i) {
            std::uint32_t crc = 0;
            ASSERT_TRUE(checksums.get(i, crc, message)) << message;
            EXPECT_EQ(crc, image.crc(regions[i].start, regions[i].length)) << "region " << i;
        }
    }

    void read(const BYTE_SOURCE& source, std::uint64_t begin, std::uint64_t end, std::size_t block)
    {
        for (std::uint64_t at = begin; at < end; at += block) {
            std::vector<std::uint8_t> bytes(std::min<std::uint64_t>(block, end - at));
            ASSERT_TRUE(source.read(at, bytes, message));
        }
    }

    COUNTING_IMAGE image{10000};
    std::vector<IMAGE_REGION> regions{region(0, 100),     region(100, 1),   region(500, 0),
                                      region(1000, 3000), region(4000, 96), region(9000, 1000)};
    REGION_CHECKSUMS checksums{image, regions};
    std::string message;
};

TEST_F(REGION_CHECKSUMS_TEST, reads_a_region_that_nobody_has_passed_and_that_once)
{
    expect_all();
    EXPECT_EQ(image.bytes_read, 100U + 1 + 3000 + 96 + 1000);
    expect_all();
    EXPECT_EQ(image.bytes_read, 100U + 1 + 3000 + 96 + 1000);
}

TEST_F(REGION_CHECKSUMS_TEST, whoever_reads_in_order_spares_the_reading)
{
    for (const std::size_t block : {1UL, 64UL, 999UL, 10000UL}) {
        REGION_CHECKSUMS fresh(image, regions);
        image.bytes_read = 0;
        read(*fresh.listen(), 0, image.size(), block);
        EXPECT_EQ(image.bytes_read, image.size());
        for (std::size_t i = 0; i < regions.size(); ++i) {
            std::uint32_t crc = 0;
            ASSERT_TRUE(fresh.get(i, crc, message));
            EXPECT_EQ(crc, image.crc(regions[i].start, regions[i].length))
                << "block " << block << " region " << i;
        }
        EXPECT_EQ(image.bytes_read, image.size()) << "block " << block;
    }
}

TEST_F(REGION_CHECKSUMS_TEST, a_reader_that_jumps_loses_only_what_it_has_not_seen_whole)
{
    const auto source = checksums.listen();
    read(*source, 0, 2000, 300);     // region 3 begun
    read(*source, 2500, 4096, 300);  // region 3 torn, region 4 whole
    read(*source, 9000, 10000, 300); // region 5 whole
    image.bytes_read = 0;
    expect_all();
    EXPECT_EQ(image.bytes_read, 3000U);
}

TEST_F(REGION_CHECKSUMS_TEST, a_reader_that_begins_again_finds_what_it_lost)
{
    const auto source = checksums.listen();
    read(*source, 0, 2000, 512);
    read(*source, 0, image.size(), 512);
    image.bytes_read = 0;
    expect_all();
    EXPECT_EQ(image.bytes_read, 0U);
}

TEST_F(REGION_CHECKSUMS_TEST, readers_in_several_threads_agree)
{
    std::vector<std::thread> threads;
    const auto shared = checksums.listen();
    for (std::size_t i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            const auto own = checksums.listen();
            std::string text;
            std::vector<std::uint8_t> bytes(100 + i);
            for (std::uint64_t at = 0; at + bytes.size() <= image.size(); at += bytes.size()) {
                own->read(at, bytes, text);
                shared->read(at, bytes, text);
            }
            std::uint32_t crc = 0;
            checksums.get(i, crc, text);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    expect_all();
}

TEST_F(REGION_CHECKSUMS_TEST, tells_why_the_image_cannot_be_read)
{
    image.fails = true;
    std::uint32_t crc = 0;
    EXPECT_FALSE(checksums.get(3, crc, message));
    EXPECT_EQ(message, "The image is gone.");
    std::vector<std::uint8_t> bytes(10);
    EXPECT_FALSE(checksums.listen()->read(0, bytes, message));
    image.fails = false;
    expect_all();
}

} // namespace
