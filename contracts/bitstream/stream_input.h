#ifndef STREAM_INPUT_H
#define STREAM_INPUT_H

#include "dset_oti_dev_options_info.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct STREAM_ENCRYPTION;
class STREAM_SIGNER;

/// How much of a file goes into its image.
enum class IMAGE_CONTENT {
    WHOLE,      ///< all that it has
    FIRMWARE,   ///< the firmware alone, without a design
    BOOTLOADER, ///< the boot loader of the processor alone
};

/// What an update image says about itself.
struct UPDATE_INFO {
    std::uint32_t version = 0;
    bool replaces_boot_info = false; ///< its firmware takes the place of that in the boot information
    bool operator==(const UPDATE_INFO&) const = default;
};

/// One file of a bitstream with what the setup asks to be done to it (the attributes of a PATH element).
struct STREAM_INPUT {
    std::string path;                     ///< absolute path of the SOF or PMSF file, in the local encoding
    bool compression = false;             ///< LZ4
    bool enhanced_compression = false;    ///< Zstandard; excludes compression
    bool decompression_during_pr = false; ///< the device decompresses while it reconfigures a region
    bool replaces_factory = false;        ///< the image is an update of the factory image
    bool application = false;             ///< the image is the application image of a factory image
    IMAGE_CONTENT content = IMAGE_CONTENT::WHOLE;
    std::optional<UPDATE_INFO> update{};
    std::string hps_path{}; ///< bootloader file, empty for none
    /// On-chip options in place of those of the file.
    std::optional<DSET_OTI_DEV_OPTIONS_INFO> option_block{};
    std::string firmware_path{}; ///< archive of co-signed firmware in place of the file's own; empty for none
    std::shared_ptr<const STREAM_ENCRYPTION> encryption{}; ///< null for none
    std::shared_ptr<const STREAM_SIGNER> signer{};         ///< null for no signature
    std::vector<std::uint8_t> key_chain{}; ///< record of the chain that ends with the signer; empty for none
};

#endif
