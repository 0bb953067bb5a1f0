#ifndef FLASH_PLAN_H
#define FLASH_PLAN_H

#include "boot_tables.h"
#include "finding.h"
#include "flash_image.h"
#include "format.h"
#include "partition_layout.h"
#include "partition_rules.h"
#include "region_checksums.h"
#include "setup_facts.h"
#include "setup_view.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Gives the configuration stream of a bitstream; null with a whole sentence in the text. The check hands out
/// sources that only know their size.
using STREAM_PROVIDER =
    std::function<std::shared_ptr<const BYTE_SOURCE>(const BITSTREAM_PICK&, std::string&)>;

/// One partition with what goes into it.
struct PARTITION_PLAN {
    /// Bytes that come from one input.
    struct PIECE {
        std::uint64_t offset; ///< from the start of the partition
        std::shared_ptr<const BYTE_SOURCE> bytes;
        std::string input; ///< id of the input
    };
    std::string label; ///< FLASH_DEVICE "Flash_Device_1" / PARTITION "P1"
    const PGM_COMMON_XML_VEK_PARTITION* element = nullptr;
    const PARTITION_RULE* rule = nullptr;                    ///< null for a partition of the user's own
    const PGM_COMMON_XML_VEK_BITSTREAM* bitstream = nullptr; ///< assigned, null for none
    BITSTREAM_PICK pick;                                     ///< how it is assigned
    std::optional<unsigned> page;
    std::vector<PIECE> pieces;
    std::string input_names;        ///< file names without directories, joined by ", "
    std::uint64_t content_size = 0; ///< from the start of the partition to behind the last byte in use
    PLACED_PARTITION place;

    /// Whether generation makes the content itself, a table say.
    bool is_generated() const;
    PARTITION_CONTENT content() const { return rule == nullptr ? PARTITION_CONTENT_INPUT : rule->content; }
};

/// The layout of one flash device of the setup.
struct FLASH_PLAN {
    const PGM_DEVICE* device = nullptr;
    std::uint64_t size = 0; ///< bytes of the image
    std::vector<PARTITION_PLAN> partitions;
    BOOT_INFO_HEADER boot_info; ///< IDCODE and firmware; the addresses come with the image
};

/// Lays out a flash device. What is wrong goes to `findings`; false when the layout cannot be used.
bool plan_flash(const SETUP_VIEW& setup, const SETUP_FACTS& facts,
                const PGM_COMMON_XML_VEK_FLASH_DEVICE& element, const STREAM_PROVIDER& streams,
                FLASH_PLAN& plan, FINDINGS& findings);

/// A flash image with the regions that the formats tell about.
struct FLASH_CONTENT {
    std::unique_ptr<FLASH_IMAGE> image;
    std::vector<IMAGE_REGION> regions; ///< ascending by start; without their checksums
    std::unique_ptr<REGION_CHECKSUMS> checksums;
};

/// Puts the content of a plan together and fills the tables that generation writes. Reads what these tables
/// have a checksum of. False with a whole sentence in `message`.
bool build_flash_content(const FLASH_PLAN& plan, FLASH_CONTENT& content, std::string& message);

/// What of the content a device reads before it finds an image: boot information, partition tables and
/// pointer blocks. Refers to `whole`, which must outlive it. False with a sentence in `message` when there is
/// none.
bool build_boot_data(const FLASH_PLAN& plan, const FLASH_CONTENT& whole, FLASH_CONTENT& boot,
                     std::string& message);

/// Whether a device reads a partition of this content before it finds an image.
bool is_boot_data(PARTITION_CONTENT content);

/// How a flash device stands in findings.
std::string flash_device_label(const PGM_COMMON_XML_VEK_FLASH_DEVICE& element);

#endif
