#ifndef CONVERSION_H
#define CONVERSION_H

#include "pgm_common_xml_vek_auto_export.h"
#include "vek_file_type.h"

#include <memory>
#include <string>
#include <vector>

/// What a conversion is to make of which files. What is left empty is found out from the inputs.
struct CONVERSION_REQUEST {
    std::vector<std::string> inputs;  ///< bitstreams and raw files
    std::string output;               ///< path of the file to write
    std::string type;                 ///< word of the output type; else the extension of the output tells it
    std::string mode;                 ///< word of the configuration mode
    std::string flash_device;         ///< name; on-chip flash is found in the bitstream
    std::string flash_loader;         ///< name; else the device of the bitstream, where one is needed
    std::vector<std::string> options; ///< [OPTION.]PARAM=VALUE
};

/// How a request has failed.
enum class CONVERSION_FAILURE { USAGE, INPUT };

/// Makes the setup that does the conversion: one output, the bitstreams in it, and for an output that is made
/// from a flash device that device with its own partitions and one for each input behind them. Paths stand in
/// it as the request has them. Null with a whole sentence in `message`.
std::unique_ptr<PGM_COMMON_XML_VEK_VEK> make_conversion(const CONVERSION_REQUEST& request,
                                                        std::string& message, CONVERSION_FAILURE& failure);

#endif
