#include "custom_flash.h"

#include "device_store.h"
#include "xml_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <filesystem>
#include <optional>
#include <set>
#include <string_view>

namespace
{

constexpr std::uint64_t MAX_FLASH_BYTES = std::uint64_t{4} << 30;
constexpr std::uint64_t MAX_SECTOR_BYTES = std::uint64_t{64} << 20;
constexpr std::uint64_t MAX_24_BIT_BYTES = std::uint64_t{1} << 24;
constexpr std::size_t MAX_NAME_LENGTH = 64;
constexpr std::size_t MAX_FILES = 1000;
constexpr XML_LIMITS LIMITS{
    .file_size = 64 * 1024, .markup_length = 16 * 1024, .value_length = 1024, .depth = 2};

struct TYPE_ROW {
    std::string_view word;
    DEV_FAMILY_ENUM family;
    DEV_CLASS_ENUM device_class;
};

constexpr std::array TYPES{
    TYPE_ROW{"serial-3v", DEV_FAMILY_SERIAL_A, DEV_CLASS_CONFIG_FLASH},
    TYPE_ROW{"serial-1v8", DEV_FAMILY_SERIAL_B, DEV_CLASS_CONFIG_FLASH},
    TYPE_ROW{"parallel", DEV_FAMILY_CFI_FLASH, DEV_CLASS_PARALLEL_FLASH},
};

/// A number as people write it, decimal or hexadecimal behind 0x. Nothing may follow it.
std::optional<std::uint64_t> parse_number(std::string_view text)
{
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

bool is_name_character(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') || character == '_' || character == '-' || character == '.';
}

bool is_blank(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

/// Takes the one element of a device file. Every value is checked where it is read, so that a refusal has
/// its place in the file.
class DEVICE_LISTENER final : public XML_LISTENER
{
public:
    explicit DEVICE_LISTENER(PGM_DEVICE& device) : m_device(device) {}

    bool start_element(std::string_view name, std::span<const XML_ATTRIBUTE> attributes,
                       std::string& refusal) override
    {
        if (name != "FLASH_DEVICE" || m_met_root) {
            refusal = "the element " + std::string(name) +
                      " is not known here; the file has one element, FLASH_DEVICE";
            return false;
        }
        m_met_root = true;
        for (const XML_ATTRIBUTE& attribute : attributes) {
            if (!read_attribute(attribute, refusal)) {
                return false;
            }
        }
        return check_version(refusal) && check_name(refusal) && check_type(refusal) && check_sizes(refusal) &&
               check_address_width(refusal) && check_jedec_id(refusal);
    }

    bool text(std::string_view text, std::string& refusal) override
    {
        if (is_blank(text)) {
            return true;
        }
        refusal = "the element FLASH_DEVICE holds no text; remove it";
        return false;
    }

    bool end_element(std::string&) override { return true; }

private:
    struct VALUE {
        std::string_view attribute;
        std::optional<std::string> text;
    };

    bool read_attribute(const XML_ATTRIBUTE& attribute, std::string& refusal)
    {
        const auto value = std::ranges::find(m_values, attribute.name, &VALUE::attribute);
        if (value == m_values.end()) {
            refusal = "the attribute " + std::string(attribute.name) + " is not known; remove it";
            return false;
        }
        value->text = attribute.value;
        return true;
    }

    bool check_version(std::string& refusal) const
    {
        if (m_values[VERSION].text == "1") {
            return true;
        }
        refusal = "the attribute version must be 1";
        return false;
    }

    bool check_name(std::string& refusal)
    {
        const std::string name = m_values[NAME].text.value_or("");
        if (name.empty() || name.size() > MAX_NAME_LENGTH || !std::ranges::all_of(name, is_name_character)) {
            refusal = "the attribute name must have 1 to 64 letters, digits or characters of \"_-.\"";
            return false;
        }
        m_device.name = name;
        return true;
    }

    bool check_type(std::string& refusal)
    {
        const auto type = std::ranges::find(TYPES, m_values[TYPE].text.value_or(""), &TYPE_ROW::word);
        if (type == TYPES.end()) {
            refusal = "the attribute type must be serial-3v, serial-1v8 or parallel";
            return false;
        }
        m_device.family = type->family;
        m_device.device_class = type->device_class;
        m_device.flash_loader = type->device_class == DEV_CLASS_CONFIG_FLASH;
        m_device.sized_in_bits = type->family == DEV_FAMILY_CFI_FLASH;
        if (m_device.sized_in_bits && m_device.name.back() != 'B') {
            refusal = "the name of a parallel device must end in B, which is shown as b";
            return false;
        }
        return true;
    }

    bool check_sizes(std::string& refusal)
    {
        std::uint64_t size = 0;
        std::uint64_t sector = 0;
        std::uint64_t page = 0;
        if (!take_number(SIZE, MAX_FLASH_BYTES, size, refusal) ||
            !take_number(SECTOR_SIZE, std::min(size, MAX_SECTOR_BYTES), sector, refusal) ||
            !take_number(PAGE_SIZE, sector, page, refusal)) {
            return false;
        }
        if (size % sector != 0) {
            refusal = "the size " + std::to_string(size) + " is no multiple of the sector_size " +
                      std::to_string(sector);
            return false;
        }
        if (sector % page != 0) {
            refusal = "the sector_size " + std::to_string(sector) + " is no multiple of the page_size " +
                      std::to_string(page);
            return false;
        }
        m_device.flash_bytes = size;
        m_device.sector_bytes = static_cast<std::uint32_t>(sector);
        m_device.page_bytes = static_cast<std::uint32_t>(page);
        return true;
    }

    bool check_address_width(std::string& refusal)
    {
        if (m_device.family == DEV_FAMILY_CFI_FLASH) {
            if (m_values[ADDRESS_WIDTH].text) {
                refusal = "the attribute address_width belongs to serial devices; remove it";
                return false;
            }
            // 16 data lines carry two bytes at each address.
            m_device.address_width =
                static_cast<std::uint32_t>(std::bit_width((m_device.flash_bytes - 1) / 2));
            return true;
        }
        m_device.address_width = m_device.flash_bytes > MAX_24_BIT_BYTES ? 32 : 24;
        if (!m_values[ADDRESS_WIDTH].text) {
            return true;
        }
        const std::optional<std::uint64_t> width = parse_number(*m_values[ADDRESS_WIDTH].text);
        if (width != 24 && width != 32) {
            refusal = "the attribute address_width must be 24 or 32";
            return false;
        }
        if (*width < m_device.address_width) {
            refusal = "24 address bits do not reach all of " + std::to_string(m_device.flash_bytes) +
                      " bytes; the attribute address_width must be 32";
            return false;
        }
        m_device.address_width = static_cast<std::uint32_t>(*width);
        return true;
    }

    bool check_jedec_id(std::string& refusal)
    {
        if (!m_values[JEDEC_ID].text) {
            return true;
        }
        const std::string_view text = *m_values[JEDEC_ID].text;
        std::array<std::uint8_t, 3> id{};
        bool sound = text.size() == 8 && text[2] == ' ' && text[5] == ' ';
        for (std::size_t i = 0; sound && i < id.size(); ++i) {
            const char* const digits = text.data() + 3 * i;
            const auto [end, error] = std::from_chars(digits, digits + 2, id.at(i), 16);
            sound = error == std::errc{} && end == digits + 2;
        }
        if (!sound || id[0] == 0x00 || id[0] == 0xFF) {
            refusal = "the attribute jedec_id must have three bytes like EF 40 18, the first of them neither "
                      "00 nor FF";
            return false;
        }
        m_device.jedec_id = id;
        return true;
    }

    enum FIELD : std::size_t {
        VERSION,
        NAME,
        TYPE,
        SIZE,
        SECTOR_SIZE,
        PAGE_SIZE,
        ADDRESS_WIDTH,
        JEDEC_ID,
        FIELDS
    };

    bool take_number(FIELD field, std::uint64_t limit, std::uint64_t& number, std::string& refusal) const
    {
        const VALUE& value = m_values.at(field);
        const std::optional<std::uint64_t> parsed = value.text ? parse_number(*value.text) : std::nullopt;
        if (!parsed || *parsed == 0 || *parsed > limit) {
            refusal = "the attribute " + std::string(value.attribute) +
                      " must be a number of bytes from 1 to " + std::to_string(limit);
            return false;
        }
        number = *parsed;
        return true;
    }

    PGM_DEVICE& m_device;
    bool m_met_root = false;
    std::array<VALUE, FIELDS> m_values{{{"version", {}},
                                        {"name", {}},
                                        {"type", {}},
                                        {"size", {}},
                                        {"sector_size", {}},
                                        {"page_size", {}},
                                        {"address_width", {}},
                                        {"jedec_id", {}}}};
};

/// The regular names "*.xml" of a directory in their order. A directory entry of another kind stays in, so
/// that it is named and not passed over in silence.
bool list_device_files(const std::string& directory, std::vector<std::string>& paths, std::string& reason)
{
    std::error_code error;
    std::filesystem::directory_iterator entry(directory, error);
    const std::filesystem::directory_iterator end;
    while (!error && entry != end) {
        if (entry->path().extension() == ".xml") {
            paths.push_back(entry->path().string());
        }
        if (paths.size() > MAX_FILES) {
            reason = "The custom flash database directory " + directory + " has more than " +
                     std::to_string(MAX_FILES) +
                     " device files. Name a directory with the devices that you need.";
            return false;
        }
        entry.increment(error);
    }
    if (error) {
        reason = "The custom flash database directory " + directory + " cannot be read (" + error.message() +
                 "). Check that it is there and may be read.";
        return false;
    }
    std::ranges::sort(paths);
    return true;
}

} // namespace

bool read_flash_device_file(const std::string& path, PGM_DEVICE& device, std::string& message)
{
    PGM_DEVICE read;
    DEVICE_LISTENER listener(read);
    if (!read_xml_file(path, LIMITS, listener, message)) {
        return false;
    }
    device = std::move(read);
    return true;
}

bool read_flash_device_bytes(std::span<const std::uint8_t> bytes, const std::string& name, PGM_DEVICE& device,
                             std::string& message)
{
    PGM_DEVICE read;
    DEVICE_LISTENER listener(read);
    if (!read_xml_bytes(bytes, name, LIMITS, listener, message)) {
        return false;
    }
    device = std::move(read);
    return true;
}

std::vector<PGM_DEVICE> read_flash_device_directory(const std::string& directory,
                                                    std::vector<CUSTOM_FLASH_PROBLEM>& problems)
{
    std::vector<std::string> paths;
    std::string reason;
    if (!list_device_files(directory, paths, reason)) {
        problems.push_back({directory, reason});
        return {};
    }
    std::vector<PGM_DEVICE> devices;
    std::set<std::string> names;
    for (const std::string& path : paths) {
        PGM_DEVICE device;
        if (!read_flash_device_file(path, device, reason)) {
            problems.push_back({path, reason});
        } else if (DEVICE_STORE::instance().find_built_in(device.name) != nullptr) {
            problems.push_back(
                {path, "The device name " + device.name +
                           " belongs to a device of the built-in database. Choose another name."});
        } else if (!names.insert(fold_device_name(device.name)).second) {
            problems.push_back({path, "The device name " + device.name +
                                          " is that of another file in the directory. Choose another name."});
        } else {
            devices.push_back(std::move(device));
        }
    }
    return devices;
}
