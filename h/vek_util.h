#ifndef VEK_UTIL_H
#define VEK_UTIL_H

#include "dev_family_enum.h"
#include "fio_path.h"
#include "fio_types.h"
#include "pgmio_config_scheme.h"

#include <cstdint>
#include <string>
#include <vector>

class PGM_COMMON_XML_VEK_VEK;
struct PGM_DEVICE;

/// One partition that a device brings along, as VEK_UTIL::get_reserved_partitions delivers it.
struct VEK_UTIL_PARTITION_INFO {
    std::string name;
    std::string start;             ///< "auto" or a hexadecimal text
    std::string end;               ///< "auto" or a hexadecimal text, the last byte included
    std::uint32_t size = 0;        ///< bytes, 0 when the content decides
    std::uint32_t extra_space = 0; ///< bytes kept free behind the content
    bool fixed_start = false;
    bool fixed_end = false;
    std::uint32_t page = 0;
    bool has_page = false;
};

/// The back end as the front end and the command line see it. All operations are static; none touches the
/// GUI. Failures are reported through the message service (vek_msgs.h); results tell only whether the call
/// worked.
class VEK_UTIL
{
public:
    /// Reads a setup file. On true `*document` is a new document that the caller owns, with the paths as the
    /// file has them. On false the problem has been reported and `*document` is untouched.
    static bool parse(PGM_COMMON_XML_VEK_VEK** document, const std::string& path);

    /// Writes the document to `path` with its paths as they stand, atomically: the old file stays until the
    /// new one is complete. Reports and returns false when the file cannot be written.
    static bool save(const PGM_COMMON_XML_VEK_VEK* document, const std::string& path);

    /// Validates the document. Returns whether the validation itself ran. `can_save`: the structure holds.
    /// `can_generate`: everything holds that generation needs. `message`: all findings in words, one a line.
    /// `has_warning`: some finding does not forbid generation. `include_files`: also look at the files named.
    static bool check(const PGM_COMMON_XML_VEK_VEK* document, bool& can_save, bool& can_generate,
                      std::string& message, bool& has_warning, bool include_files);

    /// Writes all output files of the document; to be called after a check that allows it, on any thread.
    /// A failure has been reported, leaves no partial file, and keeps the outputs of earlier runs.
    static bool generate(PGM_COMMON_XML_VEK_VEK* document);

    /// The device family that the document is for: that of its bitstreams, else the one that its flash
    /// devices and outputs imply, else DEV_FAMILY_NONE.
    static DEV_FAMILY_ENUM get_family(const PGM_COMMON_XML_VEK_VEK* document);

    /// The configuration modes (bit n of the masks stands for mode n modulo 32) and the output types (bit n
    /// for VEK_FILE_TYPE n, 0 for no restriction) of a family, narrowed to a device when that is not 0.
    static void get_family_pcf_info(DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM device, unsigned& mode_mask_a,
                                    unsigned& mode_mask_b, unsigned& output_file_mask);

    /// Opens a bitstream file, checks the structure and integrity of its header, and finds its device. Reads
    /// headers only, so that it may be asked at every repaint. On false `message` says what is wrong.
    /// `must_be_bitstream` false lets a file that is no bitstream pass as raw data, with a null device.
    static bool precheck_input_file(const FIO_PATH& path, const PGM_DEVICE** device, std::string& device_name,
                                    std::string& message, bool must_be_bitstream);

    /// Rules for a partition by its name. The two flags are partition_rule_flag_a and _b of the session.
    static bool partition_has_page(const std::string& name, PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family,
                                   DEV_DEVICE_ENUM device, bool flag_a, bool flag_b, FIO_FILE_TYPE file_type);
    static bool partition_is_editable(const std::string& name, PGMIO_CONFIG_SCHEME mode,
                                      DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM device, bool flag_a,
                                      bool flag_b, FIO_FILE_TYPE file_type);
    static bool partition_is_removable(const std::string& name, PGMIO_CONFIG_SCHEME mode,
                                       DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM device, bool flag_a,
                                       bool flag_b, FIO_FILE_TYPE file_type);

    /// The partitions that a flash device gets by itself. `two_bitstreams`, `has_puf`: what the setup holds.
    static std::vector<VEK_UTIL_PARTITION_INFO>
    get_reserved_partitions(PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM device,
                            bool two_bitstreams, bool has_puf, FIO_FILE_TYPE file_type);

    /// Whether the bitstream file can carry the boot information of a BOOT_INFO partition.
    static bool check_boot_info(const std::string& path, std::string& message);
};

#endif
