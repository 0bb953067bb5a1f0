#include "custom_devices.h"

#include "atomic_file.h"
#include "custom_flash.h"
#include "gfpdb_mgr.h"
#include "pgm_device.h"

#include <filesystem>
#include <span>
#include <system_error>

namespace fs = std::filesystem;

namespace
{

constexpr unsigned FILE_PERMISSIONS = 0644;

/// The names and types that a file may hold have none of the characters that XML sets apart; what a user has
/// typed may, and the reader is to see it as it is.
std::string quote(const std::string& text)
{
    std::string quoted;
    for (const char character : text) {
        switch (character) {
        case '&':
            quoted += "&amp;";
            break;
        case '<':
            quoted += "&lt;";
            break;
        case '"':
            quoted += "&quot;";
            break;
        default:
            quoted += character;
        }
    }
    return quoted;
}

std::string to_xml(const CUSTOM_DEVICE& device)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<FLASH_DEVICE version=\"1\"";
    const auto add = [&text](const char* name, const std::string& value) {
        text += std::string(" ") + name + "=\"" + quote(value) + "\"";
    };
    add("name", device.name);
    add("type", device.type);
    add("size", std::to_string(device.size));
    add("sector_size", std::to_string(device.sector_size));
    add("page_size", std::to_string(device.page_size));
    if (!device.address_width.empty()) {
        add("address_width", device.address_width);
    }
    if (!device.jedec_id.empty()) {
        add("jedec_id", device.jedec_id);
    }
    return text + "/>\n";
}

/// Empty when no file of the directory describes the device.
std::string find_file(const PGM_DEVICE& device)
{
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(CUSTOM_DEVICES::directory(), error)) {
        PGM_DEVICE found;
        std::string reason;
        if (entry.path().extension() == ".xml" &&
            read_flash_device_file(entry.path().string(), found, reason) && found.name == device.name) {
            return entry.path().string();
        }
    }
    return {};
}

} // namespace

std::string CUSTOM_DEVICES::directory()
{
    return GFPDB_MGR::get_db_custom_dir();
}

bool CUSTOM_DEVICES::choose_directory(const std::string& directory)
{
    return GFPDB_MGR::save_custom_dir_to_ini(directory, true);
}

bool CUSTOM_DEVICES::is_custom(const PGM_DEVICE& device)
{
    return device.device >= DEV_DEVICE_CUSTOM_FIRST;
}

bool CUSTOM_DEVICES::add(const CUSTOM_DEVICE& device, std::string& message)
{
    const std::string text = to_xml(device);
    const std::span<const std::uint8_t> bytes(reinterpret_cast<const std::uint8_t*>(text.data()),
                                              text.size());
    // The reader has the rules, so what it refuses is never written.
    PGM_DEVICE read;
    if (!read_flash_device_bytes(bytes, "The new device", read, message)) {
        return false;
    }
    if (PGM_DEVICE_INDEX::find_by_name(device.name) != nullptr) {
        message = "There is a device named \"" + device.name + "\" already; give the new one another name.";
        return false;
    }
    const std::string path = (fs::path(directory()) / (device.name + ".xml")).string();
    std::error_code error;
    if (fs::exists(path, error)) {
        message = "There is a file \"" + path + "\" already; remove it, or give the device another name.";
        return false;
    }
    const auto file = ATOMIC_FILE::create(path, FILE_PERMISSIONS, message);
    if (!file || !file->write(bytes, message) || !file->commit(message)) {
        return false;
    }
    GFPDB_MGR::set_db_custom_dir(directory());
    return true;
}

bool CUSTOM_DEVICES::remove(const PGM_DEVICE& device, std::string& message)
{
    const std::string path = find_file(device);
    if (path.empty()) {
        message =
            "No file of the directory \"" + directory() + "\" describes the device \"" + device.name + "\".";
        return false;
    }
    std::error_code error;
    if (!fs::remove(path, error)) {
        message = "The file \"" + path + "\" cannot be removed: " + error.message() + ".";
        return false;
    }
    GFPDB_MGR::set_db_custom_dir(directory());
    return true;
}
