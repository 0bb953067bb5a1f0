#ifndef PACK_H
#define PACK_H

#include "bitstream_records.h"

#include <optional>
#include <string>

/// What `imagewright-cmd pack` is asked to put into a bitstream file.
struct PACK_REQUEST {
    std::string device;         ///< name in the device database
    std::string core_path;      ///< raw configuration image of any origin
    std::string periphery_path; ///< empty for none
    std::string scheme;         ///< word of a configuration scheme (scheme_words.h), empty for any scheme
    BITSTREAM_OPTIONS options;
    std::optional<DSET_OTI_DEV_OPTIONS_INFO> option_block; ///< on-chip family only
    std::string firmware_path;                             ///< empty for none
    std::string bootloader_path;                           ///< empty for none
    std::vector<BITSTREAM_REGION> regions;                 ///< not empty makes a partial bitstream (PMSF)
    std::string output_path;
};

/// Writes the bitstream file, atomically. An image smaller than the device's configuration memory is taken as
/// it is; one that is larger is refused, as is an empty one. False with a whole sentence in `message`.
bool pack_bitstream(const PACK_REQUEST& request, std::string& message);

#endif
