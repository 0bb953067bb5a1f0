#ifndef IMAGEWRIGHT_TESTS_SVF_PLAYER_H
#define IMAGEWRIGHT_TESTS_SVF_PLAYER_H

#include "jtag_device.h"

#include <string>

/// What a player tells about a run.
struct SVF_RUN {
    std::string fault; ///< empty when all vectors held: an error of the language, or the scan that failed
    double frequency = 0;
    std::size_t statements = 0;
    std::size_t longest_line = 0;
};

/// Plays an SVF file (Serial Vector Format Specification, revision E) for a chain of one device.
SVF_RUN play_svf(const std::string& text, JTAG_DEVICE& device);

#endif
