#include "bitstream_records.h"

#include "little_endian.h"

#include <algorithm>

namespace
{

constexpr std::size_t NAME_LIMIT = 64;
constexpr std::size_t FILE_NAME_LIMIT = 4096;
constexpr std::uint32_t SCHEME_COUNT = 25;
constexpr std::uint32_t UFM_SOURCE_COUNT = 3;
constexpr std::uint32_t OPTION_BLOCK_PRESENT = 1;

bool is_letter_or_digit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool is_option_name(const std::string& name)
{
    return !name.empty() && name.size() <= NAME_LIMIT &&
           std::all_of(name.begin(), name.end(), [](char c) { return is_letter_or_digit(c) || c == '_'; });
}

void write_name(RECORD_WRITER& writer, const std::string& name)
{
    writer.u8(static_cast<std::uint8_t>(name.size()));
    writer.text(name);
}

struct OPTION_BIT {
    unsigned bit;
    bool DSET_OTI_DEV_OPTIONS_INFO::*field;
};

constexpr OPTION_BIT OPTION_BITS[] = {
    {1, &DSET_OTI_DEV_OPTIONS_INFO::user_ios_weak_pullup},
    {2, &DSET_OTI_DEV_OPTIONS_INFO::option_flag_a},
    {3, &DSET_OTI_DEV_OPTIONS_INFO::not_cfm0_only},
    {4, &DSET_OTI_DEV_OPTIONS_INFO::isp_source},
    {5, &DSET_OTI_DEV_OPTIONS_INFO::jtag_security},
    {6, &DSET_OTI_DEV_OPTIONS_INFO::verify_protect},
    {7, &DSET_OTI_DEV_OPTIONS_INFO::encrypted_pof_only},
    {8, &DSET_OTI_DEV_OPTIONS_INFO::watchdog_enabled},
    {9, &DSET_OTI_DEV_OPTIONS_INFO::spi_mode},
    {10, &DSET_OTI_DEV_OPTIONS_INFO::fallback_enabled},
    {11, &DSET_OTI_DEV_OPTIONS_INFO::force_ssmclk_to_use_ismclk},
    {12, &DSET_OTI_DEV_OPTIONS_INFO::option_flag_b},
    {13, &DSET_OTI_DEV_OPTIONS_INFO::enable_test},
    {14, &DSET_OTI_DEV_OPTIONS_INFO::disable_test},
};
constexpr std::uint32_t OPTION_WORD_MASK = 0x7FFF;

} // namespace

bool is_bitstream_name(const std::string& name)
{
    return !name.empty() && name.size() <= NAME_LIMIT && std::all_of(name.begin(), name.end(), [](char c) {
        return is_letter_or_digit(c) || c == '-' || c == '_' || c == '.';
    });
}

std::vector<std::uint8_t> encode_device(const BITSTREAM_DEVICE& device)
{
    RECORD_WRITER writer;
    writer.u32(device.idcode);
    write_name(writer, device.name);
    return writer.take();
}

bool decode_device(std::span<const std::uint8_t> bytes, BITSTREAM_DEVICE& device, std::string& reason)
{
    RECORD_READER reader(bytes);
    device.idcode = reader.u32();
    device.name = reader.text(reader.u8());
    if (!reader.used_up()) {
        reason = "the device record has a wrong length";
        return false;
    }
    if (!is_bitstream_name(device.name)) {
        reason = "the device record holds no valid device name";
        return false;
    }
    return true;
}

std::vector<std::uint8_t> encode_scheme(std::uint32_t scheme)
{
    RECORD_WRITER writer;
    writer.u32(scheme);
    return writer.take();
}

bool decode_scheme(std::span<const std::uint8_t> bytes, std::uint32_t& scheme, std::string& reason)
{
    RECORD_READER reader(bytes);
    scheme = reader.u32();
    if (!reader.used_up()) {
        reason = "the scheme record has a wrong length";
        return false;
    }
    if (scheme >= SCHEME_COUNT) {
        reason = "the scheme record holds " + std::to_string(scheme) + ", schemes go from 0 to " +
                 std::to_string(SCHEME_COUNT - 1);
        return false;
    }
    return true;
}

std::vector<std::uint8_t> encode_options(const BITSTREAM_OPTIONS& options)
{
    RECORD_WRITER writer;
    writer.u16(static_cast<std::uint16_t>(options.size()));
    for (const auto& [name, value] : options) {
        writer.u8(value ? 1 : 0);
        write_name(writer, name);
    }
    return writer.take();
}

bool decode_options(std::span<const std::uint8_t> bytes, BITSTREAM_OPTIONS& options, std::string& reason)
{
    options.clear();
    RECORD_READER reader(bytes);
    const unsigned count = reader.u16();
    std::string last;
    for (unsigned i = 0; i < count && reader.good(); ++i) {
        const std::uint8_t value = reader.u8();
        const std::string name = reader.text(reader.u8());
        if (!reader.good())
            break;
        if (value > 1 || !is_option_name(name)) {
            reason = "option " + std::to_string(i + 1) + " has no valid name or value";
            return false;
        }
        if (name <= last) {
            reason = "option " + std::to_string(i + 1) + " is not in ascending order of names";
            return false;
        }
        options.emplace(name, value != 0);
        last = name;
    }
    if (!reader.used_up()) {
        reason = "the options record has a wrong length";
        return false;
    }
    return true;
}

std::vector<std::uint8_t> encode_option_block(const DSET_OTI_DEV_OPTIONS_INFO& options, bool with_file_name)
{
    std::uint32_t word = OPTION_BLOCK_PRESENT;
    for (const OPTION_BIT& row : OPTION_BITS)
        word |= options.*row.field ? 1U << row.bit : 0U;
    RECORD_WRITER writer;
    writer.u32(word);
    writer.u32(options.power_on_scheme);
    writer.u32(options.watchdog_value);
    writer.u32(options.fallback_address);
    writer.u32(options.ufm_source);
    const std::string file = with_file_name ? options.ufm_source_file : std::string();
    writer.u16(static_cast<std::uint16_t>(file.size()));
    writer.text(file);
    return writer.take();
}

bool decode_option_block(std::span<const std::uint8_t> bytes, DSET_OTI_DEV_OPTIONS_INFO& options,
                         std::uint32_t& option_word, std::string& reason)
{
    RECORD_READER reader(bytes);
    option_word = reader.u32();
    options.power_on_scheme = reader.u32();
    options.watchdog_value = reader.u32();
    options.fallback_address = reader.u32();
    options.ufm_source = reader.u32();
    options.ufm_source_file = reader.text(reader.u16());
    if (!reader.used_up() || options.ufm_source_file.size() > FILE_NAME_LIMIT) {
        reason = "the on-chip option block has a wrong length";
        return false;
    }
    if ((option_word & OPTION_BLOCK_PRESENT) == 0 || (option_word & ~OPTION_WORD_MASK) != 0) {
        reason = "the on-chip option block has an option word that is not defined";
        return false;
    }
    if (options.ufm_source >= UFM_SOURCE_COUNT) {
        reason = "the on-chip option block names source " + std::to_string(options.ufm_source) +
                 " for the user flash memory, sources go from 0 to 2";
        return false;
    }
    for (const OPTION_BIT& row : OPTION_BITS)
        options.*row.field = (option_word >> row.bit & 1U) != 0;
    return true;
}

std::vector<std::uint8_t> encode_regions(const std::vector<BITSTREAM_REGION>& regions)
{
    RECORD_WRITER writer;
    writer.u16(static_cast<std::uint16_t>(regions.size()));
    for (const BITSTREAM_REGION& region : regions) {
        writer.u64(region.offset);
        writer.u64(region.length);
        write_name(writer, region.name);
    }
    return writer.take();
}

bool decode_regions(std::span<const std::uint8_t> bytes, std::vector<BITSTREAM_REGION>& regions,
                    std::string& reason)
{
    regions.clear();
    RECORD_READER reader(bytes);
    const unsigned count = reader.u16();
    std::uint64_t end = 0;
    for (unsigned i = 0; i < count && reader.good(); ++i) {
        BITSTREAM_REGION region;
        region.offset = reader.u64();
        region.length = reader.u64();
        region.name = reader.text(reader.u8());
        if (!reader.good())
            break;
        if (!is_bitstream_name(region.name)) {
            reason = "region " + std::to_string(i + 1) + " has no valid name";
            return false;
        }
        if (region.length == 0 || region.offset < end || region.length > UINT64_MAX - region.offset) {
            reason = "region " + region.name + " is empty, overlaps the one before it, or leaves the device";
            return false;
        }
        end = region.offset + region.length;
        regions.push_back(region);
    }
    if (!reader.used_up() || count == 0) {
        reason = "the region record has a wrong length";
        return false;
    }
    return true;
}
