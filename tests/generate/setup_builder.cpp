#include "setup_builder.h"

#include "atomic_file.h"
#include "bitstream_writer.h"
#include "pgm_device.h"
#include "vek_util.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

std::shared_ptr<const BYTE_SOURCE> memory(std::vector<std::uint8_t> bytes)
{
    return std::make_shared<MEMORY_SOURCE>(std::move(bytes));
}

} // namespace

std::vector<std::uint8_t> noise(std::size_t size, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes(size);
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    return bytes;
}

std::vector<std::uint8_t> configuration_of(const SMALL_BITSTREAM& bitstream)
{
    std::vector<std::uint8_t> bytes = noise(bitstream.periphery, bitstream.seed * 2);
    const std::vector<std::uint8_t> core = noise(bitstream.core, bitstream.seed * 2 + 1);
    bytes.insert(bytes.end(), core.begin(), core.end());
    return bytes;
}

void write_bitstream(const std::string& path, const SMALL_BITSTREAM& bitstream)
{
    const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name(bitstream.device);
    ASSERT_NE(device, nullptr) << bitstream.device;
    BITSTREAM_WRITER writer(bitstream.partial ? BITSTREAM_KIND::PMSF : BITSTREAM_KIND::SOF,
                            {device->name, device->idcode});
    if (bitstream.scheme) {
        writer.set_scheme(*bitstream.scheme);
    }
    if (bitstream.prepared_for_encryption) {
        writer.set_options({{"sof_option_encryption", true}});
    }
    if (bitstream.partial) {
        writer.set_regions({{"region", 0, bitstream.core}});
    }
    if (bitstream.periphery != 0) {
        writer.add_section(SECTION_PERIPHERY, memory(noise(bitstream.periphery, bitstream.seed * 2)));
    }
    writer.add_section(SECTION_CORE, memory(noise(bitstream.core, bitstream.seed * 2 + 1)));
    if (bitstream.firmware != 0) {
        writer.add_section(SECTION_FIRMWARE, memory(noise(bitstream.firmware, bitstream.seed + 1000)));
    }
    MEMORY_SINK sink;
    std::string message;
    ASSERT_TRUE(writer.write(sink, message)) << message;
    write_file(path, sink.bytes());
}

SETUP_BUILDER::SETUP_BUILDER(const std::string& mode)
    : m_document(std::make_unique<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK))
{
    set(VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, mode}});
}

std::string SETUP_BUILDER::bitstream(const std::string& id, const SMALL_BITSTREAM& content)
{
    const std::string name = path(id + (content.partial ? ".pmsf" : ".sof"));
    write_bitstream(name, content);
    set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, id}, {VEK_CMD_PARAM_BITSTREAM_PATH, name}});
    return name;
}

void SETUP_BUILDER::raw_file(const std::string& id, const std::string& type, const std::string& name,
                             const std::string& bytes)
{
    write_file(path(name), bytes);
    set(VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, id},
                               {VEK_CMD_PARAM_RAW_FILE_TYPE, type},
                               {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, path(name)}});
}

void SETUP_BUILDER::output(const std::string& type, const std::vector<std::string>& bitstreams,
                           const std::string& flash, const std::vector<std::string>& secondary)
{
    set(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_DIRECTORY, m_directory.path()},
                                  {VEK_CMD_PARAM_OUTPUT_FILE_NAME, "out"},
                                  {VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type}});
    for (const std::string& id : bitstreams) {
        set(VEK_CMD_OPT_OUTPUT_FILE,
            {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type}, {VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, id}});
    }
    if (!flash.empty()) {
        set(VEK_CMD_OPT_OUTPUT_FILE,
            {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type}, {VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, flash}});
    }
    for (const std::string& one : secondary) {
        set(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type},
                                      {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, one},
                                      {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_NAME, "out_secondary"}});
    }
}

void SETUP_BUILDER::flash(const std::string& id, const std::string& type)
{
    set(VEK_CMD_OPT_FLASH_DEVICE,
        {{VEK_CMD_PARAM_FLASH_DEVICE_ID, id}, {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, type}});
}

void SETUP_BUILDER::partition(const std::string& flash, const std::string& id, const std::string& start,
                              const std::string& end)
{
    set(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, flash},
                                   {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, id},
                                   {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, start},
                                   {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, end}});
}

void SETUP_BUILDER::assign(const std::string& partition, const std::string& input, const std::string& page)
{
    const bool is_bitstream = VEK_FILE_ASSISTANT::get_bitstream_element(m_document.get(), input) != nullptr;
    VEK_FILE_ASSISTANT::PARAMS params = {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, partition}};
    if (!page.empty()) {
        params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_PAGE, page);
    }
    params.emplace_back(
        is_bitstream ? VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID : VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, input);
    set(VEK_CMD_OPT_ASSIGNMENT, params);
}

void SETUP_BUILDER::reserved(const std::string& flash, bool two_bitstreams, bool puf)
{
    const DEV_FAMILY_ENUM family = VEK_UTIL::get_family(m_document.get());
    PGMIO_CONFIG_SCHEME mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
    ASSERT_TRUE(VEK_FILE_ASSISTANT::get_config_mode(m_document.get(), mode));
    const auto* element = VEK_FILE_ASSISTANT::get_flash_device_element(m_document.get(), flash);
    const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name(element->type);
    if (family == DEV_FAMILY_ONCHIP_FLASH && two_bitstreams) {
        mode = PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES;
    }
    for (const VEK_UTIL_PARTITION_INFO& info : VEK_UTIL::get_reserved_partitions(
             mode, family, device->device, two_bitstreams, puf, FIO_INVALID_FILE)) {
        partition(flash, info.name, info.start, info.end);
    }
}

void SETUP_BUILDER::set(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const VEK_FILE_ASSISTANT::PARAMS& params)
{
    ASSERT_TRUE(VEK_FILE_ASSISTANT::set(m_document.get(), option, params))
        << params.front().second << " / " << params.back().second;
}
