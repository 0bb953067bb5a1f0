#ifndef MEASUREMENT_H
#define MEASUREMENT_H

#include "ecdsa.h"
#include "stream_input.h"

#include <cstdint>
#include <optional>
#include <string>

/// What a device reports when it is asked for the SHA-384 of what it was configured with.
struct IMAGE_MEASUREMENTS {
    std::string device;
    std::uint32_t idcode = 0;
    bool partial = false;
    std::optional<SHA384_DIGEST> firmware;   ///< nothing when there is none
    std::optional<SHA384_DIGEST> bootloader; ///< nothing when there is none
    SHA384_DIGEST design{};                  ///< periphery data, then core data
    SHA384_DIGEST options{};                 ///< the record packets of the stream, KEY INFO included
};

/// Measures the image that the stream of an input holds. False with a whole sentence in `message` when a file
/// cannot be read or is damaged.
bool measure_image(const STREAM_INPUT& input, IMAGE_MEASUREMENTS& measurements, std::string& message);

#endif
