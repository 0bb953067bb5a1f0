#ifndef FLASH_LAYOUTS_H
#define FLASH_LAYOUTS_H

#include "finding.h"
#include "pgm_common_xml_vek_auto_export.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A range of bytes of a flash device; `end` is its last byte.
struct FLASH_RANGE {
    std::uint64_t start = 0;
    std::uint64_t end = 0;

    std::uint64_t size() const { return end - start + 1; }
};

/// One partition where generation will put it.
struct FLASH_LAYOUT_PARTITION {
    struct INPUT {
        std::string id; ///< of the bitstream or raw file; empty for a file that has no element, firmware say
        FLASH_RANGE range;
    };
    std::string name;
    FLASH_RANGE range;
    std::uint64_t used = 0; ///< bytes from the start to behind the last one in use
    std::optional<unsigned> page;
    bool is_reserved = false;  ///< the device brings it along
    bool is_generated = false; ///< the tool makes the content
    std::string files;         ///< names of the inputs' files, without directories, joined by ", "
    std::vector<INPUT> inputs; ///< ascending by start, none of them empty
};

/// The layout of one flash device of a setup.
struct FLASH_LAYOUT {
    std::string id;
    std::string device; ///< name in the flash database
    std::uint64_t size = 0;
    std::uint64_t sector_size = 0;
    std::vector<FLASH_LAYOUT_PARTITION> partitions; ///< ascending by start
    std::vector<FLASH_RANGE> gaps;                  ///< what no partition has, ascending
};

/// Lays out all flash devices of a setup as generation does, with the real sizes of their inputs, and writes
/// nothing. What is wrong with the layout goes to `findings`; devices whose layout cannot be used are left
/// out of `layouts`, and so are all when the structure of the setup does not hold.
void find_flash_layouts(const PGM_COMMON_XML_VEK_VEK& document, std::vector<FLASH_LAYOUT>& layouts,
                        FINDINGS& findings);

#endif
