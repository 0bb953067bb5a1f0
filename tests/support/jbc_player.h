#ifndef IMAGEWRIGHT_TESTS_JBC_PLAYER_H
#define IMAGEWRIGHT_TESTS_JBC_PLAYER_H

#include "jtag_device.h"

#include <map>
#include <string>
#include <vector>

/// A JBC as another program reads it by docs/formats/jbc.md.
struct JBC_PROGRAM {
    std::string fault; ///< empty when the file is right
    std::string device;
    std::uint64_t idcode = 0;
    std::uint64_t instruction_length = 0;
    std::uint64_t scan_bytes = 0;
    std::vector<std::vector<std::uint8_t>> procedures;
    std::map<std::string, std::vector<std::uint8_t>> actions;
    std::vector<std::uint8_t> stream;

    static JBC_PROGRAM parse(const std::vector<std::uint8_t>& file);
    /// Runs an action; its exit code, 0 for success, -1 for what the page does not allow.
    int run(const std::string& action, JTAG_DEVICE& target) const;
};

#endif
