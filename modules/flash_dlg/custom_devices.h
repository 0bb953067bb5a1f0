#ifndef CUSTOM_DEVICES_H
#define CUSTOM_DEVICES_H

#include <cstdint>
#include <string>
#include <vector>

struct PGM_DEVICE;

/// What a user says about a flash device of the own, as it stands in a flash device file
/// (docs/formats/flash-device-file.md).
struct CUSTOM_DEVICE {
    std::string name;
    std::string type; ///< "serial-3v", "serial-1v8" or "parallel"
    std::uint64_t size = 0;
    std::uint64_t sector_size = 0;
    std::uint64_t page_size = 0;
    std::string address_width; ///< "24", "32" or empty
    std::string jedec_id;      ///< "EF 40 17" or empty
};

/// The user's own flash devices: the files in the custom flash database directory.
class CUSTOM_DEVICES
{
public:
    /// The directory in force, empty when there is none.
    static std::string directory();
    /// Puts a directory in force and remembers it for later runs. False when it cannot be remembered, which
    /// has been reported.
    static bool choose_directory(const std::string& directory);

    /// Whether the device comes from a device file.
    static bool is_custom(const PGM_DEVICE& device);

    /// Writes the file of a device into the directory and puts the directory in force anew. False with a
    /// whole sentence in `message`, and no file, when the device breaks a rule of the format, a device of
    /// that name is there, or the file cannot be written.
    static bool add(const CUSTOM_DEVICE& device, std::string& message);

    /// Removes the file of a device and puts the directory in force anew. False with a whole sentence in
    /// `message` when no file describes the device, or the file cannot be removed.
    static bool remove(const PGM_DEVICE& device, std::string& message);
};

#endif
