#ifndef SETUP_FACTS_H
#define SETUP_FACTS_H

#include "setup_view.h"
#include "stream_input.h"

#include <vector>

struct PGM_DEVICE;

/// What the files of a setup say beyond the document.
struct SETUP_FACTS {
    DEV_FAMILY_ENUM family = DEV_FAMILY_NONE;
    const PGM_DEVICE* device = nullptr; ///< of the first bitstream that can be read; null when there is none
    /// The mode of the settings; for on-chip flash the scheme of the first bitstream, which tells a single
    /// image from dual ones.
    PGMIO_CONFIG_SCHEME mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
};

/// Reads headers of bitstreams until one answers. The family is that of the bitstreams, else the one that the
/// on-chip flash device, the flash loader, or the mode implies.
SETUP_FACTS find_setup_facts(const SETUP_VIEW& setup);

/// The device that a bitstream is for: that of its first file that can be read; null when there is none.
const PGM_DEVICE* bitstream_device(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream);

/// The device that a file of a bitstream is for; null when it cannot be read.
const PGM_DEVICE* path_device(const PGM_COMMON_XML_VEK_PATH& path);

/// A bitstream as an output or a partition takes it.
struct BITSTREAM_PICK {
    std::string id;
    bool bootloader_only = false; ///< the boot loader of its processor and nothing else
    bool operator==(const BITSTREAM_PICK&) const = default;
};

/// What the text of the link and its section ask for.
BITSTREAM_PICK pick_of(const PGM_COMMON_XML_VEK_BITSTREAM_ID& link);

/// What goes into an output, in order: what it lists, or for one that is made from a flash device what its
/// partitions take, each once.
std::vector<BITSTREAM_PICK> output_picks(const SETUP_VIEW& setup,
                                         const PGM_COMMON_XML_VEK_OUTPUT_FILE& output);

/// The bitstreams of an output in the order in which they go into it: those that it lists, or for one that is
/// made from a flash device those of its partitions, each once.
std::vector<std::string> output_bitstreams(const SETUP_VIEW& setup,
                                           const PGM_COMMON_XML_VEK_OUTPUT_FILE& output);

/// The images of a bitstream, as the stream builder takes them. `option_block`: device options in place of
/// those of the files.
std::vector<STREAM_INPUT>
stream_inputs(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream,
              const std::optional<DSET_OTI_DEV_OPTIONS_INFO>& option_block = std::nullopt);

/// Narrows the images of a bitstream to what is picked of it.
void apply_pick(const BITSTREAM_PICK& pick, std::vector<STREAM_INPUT>& inputs);

/// How many of those images come from that file: its own, its application image, or both.
std::size_t image_count(const PGM_COMMON_XML_VEK_PATH& file);

/// The options that the setup has for an on-chip device; nothing for another device.
std::optional<DSET_OTI_DEV_OPTIONS_INFO> onchip_options(const SETUP_VIEW& setup,
                                                        const PGM_COMMON_XML_VEK_FLASH_DEVICE& device);

/// The names of the files without directories, joined by ", ".
std::string input_names(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream);

#endif
