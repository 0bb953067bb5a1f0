#ifndef CONVERSION_FLASH_H
#define CONVERSION_FLASH_H

#include "pgm_common_xml_vek_auto_export.h"
#include "pgmio_config_scheme.h"

#include <string>
#include <vector>

struct PGM_DEVICE;

/// The inputs of a setup that are to go into a flash device.
struct FLASH_INPUTS {
    struct RAW_FILE {
        std::string id;
        std::string word; ///< its type in the document
    };
    const PGM_DEVICE* device = nullptr; ///< FPGA that the bitstreams are for, null when there is none
    PGMIO_CONFIG_SCHEME mode = PGMIO_CONFIG_SCHEME_ILLEGAL; ///< for on-chip flash what the bitstream holds
    std::vector<std::string> bitstreams;                    ///< ids
    std::vector<RAW_FILE> raw_files;
};

/// Gives a flash device of the document the partitions that it brings along, and behind them one for each
/// input that has no place in those: P1, P2 and on for bitstreams, D1, D2 and on for raw files, with the
/// number of the input. Bitstreams get their pages in order. False with a whole sentence in `message`.
bool lay_out_inputs(PGM_COMMON_XML_VEK_VEK& document, const std::string& device_id,
                    const FLASH_INPUTS& inputs, std::string& message);

#endif
