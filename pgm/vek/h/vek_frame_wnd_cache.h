#ifndef VEK_FRAME_WND_CACHE_H
#define VEK_FRAME_WND_CACHE_H

#include "dev_family_enum.h"
#include "pgmio_config_scheme.h"

#include <cstdint>
#include <string>
#include <unordered_map>

/// The base name of the output files until the user gives another one.
inline constexpr char VEK_DEFAULT_OUTPUT_FILE_NAME[] = "output_file";

/// What a session has learnt from the combos and from the first input file. The frame, the tabs and the
/// models share one through a shared pointer; it has no lock and belongs to the GUI thread.
///
/// The values here are those of a new session, which VEK_FRAME_WND::reset_cache puts back except where noted.
struct VEK_FRAME_WND_CACHE {
    /// In force: from the family combo, or from the first bitstream.
    DEV_FAMILY_ENUM family = DEV_FAMILY_NONE;
    DEV_DEVICE_ENUM device =
        static_cast<DEV_DEVICE_ENUM>(0); ///< of the first bitstream, 0 while there is none
    std::string device_name;             ///< of the first bitstream
    /// As the document had it when the first bitstream came in.
    PGMIO_CONFIG_SCHEME config_mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
    std::uint32_t mode_mask_a = ~std::uint32_t{0}; ///< bit n modulo 32: the family takes configuration mode n
    std::uint32_t mode_mask_b =
        ~std::uint32_t{0};              ///< a second mask of the same kind, 0 when it does not apply
    std::uint32_t output_file_mask = 0; ///< bit n: VEK_FILE_TYPE n is allowed; 0: no restriction
    std::uint32_t max_files_per_bitstream = 16;
    std::uint32_t max_flash_devices = 1;
    std::uint32_t max_bitstreams = 1;
    bool shares_signing_properties = false; ///< the files of the setup share their signing properties
    /// Full path of a bitstream file to its own value of "sof_option_encryption". Survives a reset: entries
    /// of files that are gone do no harm.
    std::unordered_map<std::string, bool> sof_encryption_by_path;
    /// The mode last announced with VEK_FRAME_WND::mode_changed.
    PGMIO_CONFIG_SCHEME current_mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
    std::string output_directory = "."; ///< for new output files
    std::string output_name = VEK_DEFAULT_OUTPUT_FILE_NAME;
    bool flash_loader_required = false; ///< some output file type of the document needs a flash loader
    bool boot_rule_flag_a = false; ///< cleared for the secure families in active serial mode; nobody reads it
    bool boot_rule_flag_b = false; ///< cleared together with boot_rule_flag_a; nobody reads it
    bool partition_rule_flag_a = false; ///< first flag of the partition rules of VEK_UTIL
    bool partition_rule_flag_b = false; ///< second flag of the partition rules; survives a reset
};

#endif
