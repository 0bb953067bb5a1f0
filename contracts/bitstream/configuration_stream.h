#ifndef CONFIGURATION_STREAM_H
#define CONFIGURATION_STREAM_H

#include "byte_source.h"
#include "stream_input.h"

#include <memory>
#include <string>
#include <vector>

/// Which parts of each bitstream a stream carries, for devices whose periphery and core come separately.
enum class STREAM_SELECTION {
    ALL,       ///< periphery, core, firmware and bootloader
    PERIPHERY, ///< periphery, firmware and bootloader: what the device starts from
    CORE       ///< core alone
};

/// Builds the configuration stream of one bitstream, as an RBF file or a flash partition holds it. The layout
/// is written down in docs/formats/configuration-stream.md.
///
/// The files of `inputs` are chained in order. Plain data is not copied: the result refers to the open input
/// files, so that a stream of any size costs a few KiB of memory; what is transformed (compressed, encrypted)
/// lies in a spool file in `spool_directory`, of encrypted images the encrypted form alone. Frames are
/// encrypted, and the image signed as it is then. The checksums of the inputs are verified on the way. Equal
/// inputs give equal bytes. Null with a whole sentence in `message` when an input cannot be read, is no sound
/// bitstream, or has nothing of what is selected. Thread-safe.
std::shared_ptr<const BYTE_SOURCE>
build_configuration_stream(const std::vector<STREAM_INPUT>& inputs, const std::string& spool_directory,
                           std::string& message, STREAM_SELECTION selection = STREAM_SELECTION::ALL);

#endif
