#ifndef IMAGEWRIGHT_TESTS_COMMAND_RUN_H
#define IMAGEWRIGHT_TESTS_COMMAND_RUN_H

#include "command.h"
#include "temporary_directory.h"

#include <string>
#include <vector>

/// What a command has answered.
struct ANSWER {
    int exit_code = -1;
    std::string out;
    std::string err;
    JSON json() const { return JSON::parse(out); }
};

/// Runs a command within the test.
ANSWER run(const std::vector<std::string>& arguments);

/// Makes sample bitstreams and setups in a directory of its own. All paths in the setups are absolute.
class BOARD
{
public:
    std::string path(const std::string& name) const { return m_directory / name; }
    const TEMPORARY_DIRECTORY& directory() const { return m_directory; }

    /// A bitstream of `core` bytes that repeat themselves little. Its path.
    std::string bitstream(const std::string& name, const std::string& device = "BS1L15",
                          const std::string& scheme = "PS", std::size_t core = 5000,
                          const std::vector<std::string>& more = {}) const;

    /// A setup of the given groups: `<VEK version="1"><SETTINGS mode="..."/>` and what follows. Its path.
    std::string setup(const std::string& name, const std::string& mode, const std::string& groups) const;

    /// Passive serial: the bitstream top.sof into RBF, TTF, HEX, SVF, JAM and JBC under the directory "out".
    std::string passive_setup() const;

    /// The raw files of an encrypted bitstream and of a signed one. Their paths.
    std::string encrypted_stream() const;
    std::string signed_stream() const;
    /// An RBF file that is signed through a key chain.
    std::string chained_stream() const;
    /// An RBF file of an update image with a version.
    std::string update_stream() const;
    /// An RBF file whose encryption is to be completed.
    std::string prepared_stream() const;

    /// Active serial: two bitstreams and a raw file, the smallest partitions far below a pixel, gaps between;
    /// POF with MAP and SEC_RPD, JIC, RPD under the directory "out".
    std::string flash_setup() const;

private:
    TEMPORARY_DIRECTORY m_directory;
};

/// `<PATH>` and the like.
std::string element(const std::string& name, const std::string& text);

#endif
