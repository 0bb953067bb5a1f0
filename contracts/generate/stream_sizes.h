#ifndef STREAM_SIZES_H
#define STREAM_SIZES_H

#include "flash_plan.h"

/// Gives the sizes of the streams that go into a flash device, each bitstream built once; sources that only
/// know their size. When all that is made from the device are files of the periphery, the streams hold the
/// periphery alone. What is transformed on the way lies in the directory for temporary files. The setup must
/// outlive the provider.
STREAM_PROVIDER real_stream_sizes(const SETUP_VIEW& setup, const PGM_COMMON_XML_VEK_FLASH_DEVICE& device);

/// Stands for a stream of which only the size matters.
std::shared_ptr<const BYTE_SOURCE> size_source(std::uint64_t size);

#endif
