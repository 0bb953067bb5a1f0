#include "bitstream_test_support.h"

#include "reference_loader.h"

#include <botan/hash.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace
{

std::uint64_t high_water_kib()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        std::uint64_t value = 0;
        if (word == "VmHWM:" && status >> value)
            return value;
    }
    throw std::runtime_error("the kernel does not tell the peak memory");
}

} // namespace

PEAK_MEMORY::PEAK_MEMORY()
{
    std::ofstream reset("/proc/self/clear_refs");
    EXPECT_TRUE(reset << "5" << std::flush);
    m_start = high_water_kib();
}

std::uint64_t PEAK_MEMORY::kib() const
{
    return high_water_kib() - m_start;
}

BYTES random_bytes(std::mt19937& random, std::size_t size)
{
    BYTES bytes(size);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random() >> 24);
    return bytes;
}

BYTES redundant_bytes(std::mt19937& random, std::size_t size)
{
    BYTES bytes(size);
    for (std::uint8_t& byte : bytes)
        byte = random() % 16 == 0 ? static_cast<std::uint8_t>(random() >> 24) : 0;
    return bytes;
}

const PGM_DEVICE& some_fpga()
{
    return fpga_of_family(DEV_FAMILY_GRANITE);
}

const PGM_DEVICE& fpga_of_family(DEV_FAMILY_ENUM family)
{
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list())
        if (device->family == family && device->device_class == DEV_CLASS_FPGA)
            return *device;
    throw std::runtime_error("the database has no FPGA of family " + std::to_string(family));
}

TEST_CONTENT full_content()
{
    std::mt19937 random(7);
    TEST_CONTENT content;
    content.device = {some_fpga().name, some_fpga().idcode};
    content.scheme = 13;
    content.options = {{"sof_option_encryption", true}, {"another_option", false}};
    content.option_block.emplace();
    content.option_block->power_on_scheme = 3;
    content.option_block->fallback_enabled = true;
    content.option_block->fallback_address = 0x12345678;
    content.option_block->user_ios_weak_pullup = false;
    content.option_block->ufm_source = 2;
    content.option_block->ufm_source_file = "data/user flash.hex";
    content.data = {{SECTION_PERIPHERY, random_bytes(random, 1000)},
                    {SECTION_CORE, random_bytes(random, 5000)},
                    {SECTION_FIRMWARE, random_bytes(random, 300)},
                    {SECTION_BOOTLOADER, random_bytes(random, 1)}};
    return content;
}

TEST_CONTENT small_content(const BYTES& core)
{
    TEST_CONTENT content;
    content.device = {some_fpga().name, some_fpga().idcode};
    content.data = {{SECTION_CORE, core}};
    return content;
}

BYTES make_file(const TEST_CONTENT& content)
{
    BITSTREAM_WRITER writer(content.kind, content.device);
    if (content.scheme)
        writer.set_scheme(*content.scheme);
    if (!content.options.empty())
        writer.set_options(content.options);
    if (content.option_block)
        writer.set_option_block(*content.option_block);
    if (!content.regions.empty())
        writer.set_regions(content.regions);
    for (const auto& [tag, bytes] : content.data)
        writer.add_section(tag, std::make_shared<MEMORY_SOURCE>(bytes));
    MEMORY_SINK sink;
    std::string message;
    EXPECT_TRUE(writer.write(sink, message)) << message;
    return sink.take();
}

void put_number(BYTES& bytes, std::size_t offset, std::size_t size, std::uint64_t value)
{
    for (std::size_t i = 0; i < size; ++i)
        bytes.at(offset + i) = static_cast<std::uint8_t>(value >> (8 * i));
}

void mend_header(BYTES& file)
{
    const std::size_t directory = 16U * (file.at(14) + 256U * file.at(15));
    BYTES covered(file.begin(), file.begin() + 28);
    covered.insert(covered.end(), file.begin() + 32,
                   file.begin() + static_cast<std::ptrdiff_t>(32 + directory));
    put_number(file, 28, 4, reference_crc32(covered));
}

void mend_digest(BYTES& file)
{
    const auto hash = Botan::HashFunction::create_or_throw("SHA-256");
    hash->update(file.data(), file.size() - 32);
    const auto digest = hash->final_stdvec();
    std::copy(digest.begin(), digest.end(), file.end() - 32);
}

std::shared_ptr<const BITSTREAM_FILE> open_bytes(const BYTES& bytes, std::string& message)
{
    return BITSTREAM_FILE::open(std::make_shared<MEMORY_SOURCE>(bytes), "a.sof", message);
}

BYTES bytes_of(const BYTE_SOURCE& source)
{
    BYTES bytes(static_cast<std::size_t>(source.size()));
    std::string message;
    EXPECT_TRUE(source.read(0, bytes, message)) << message;
    return bytes;
}
