#ifndef IMAGEWRIGHT_TESTS_STAPL_PLAYER_H
#define IMAGEWRIGHT_TESTS_STAPL_PLAYER_H

#include "jtag_device.h"

#include <map>
#include <string>
#include <vector>

/// A STAPL file (JEDEC JESD71): read by the grammar of the language, as far as programs for one device need
/// it.
class STAPL_PROGRAM
{
public:
    /// What is wrong with the file; empty when it is right.
    std::string fault;
    std::map<std::string, std::string> notes;
    std::map<std::string, std::vector<std::string>> actions; ///< procedures of each

    static STAPL_PROGRAM parse(const std::string& text);

    /// Runs an action; its exit code, 0 for success. -1 for an error of the program, told in `fault`.
    int run(const std::string& action, JTAG_DEVICE& device);

private:
    struct BLOCK {
        std::vector<std::string> uses;
        std::vector<std::string> statements;
    };
    friend class STAPL_RUN;
    std::map<std::string, BLOCK> m_procedures;
    std::map<std::string, BLOCK> m_data;
};

/// The CRC of the CRC statement, one bit at a time.
unsigned plain_stapl_crc(const std::string& text);

#endif
