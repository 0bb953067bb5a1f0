#ifndef IMAGEWRIGHT_TESTS_SETUP_BUILDER_H
#define IMAGEWRIGHT_TESTS_SETUP_BUILDER_H

#include "temporary_directory.h"
#include "vek_file_assistant.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Bytes that look like nothing, the same for each seed.
std::vector<std::uint8_t> noise(std::size_t size, unsigned seed);

/// What a small bitstream file for tests holds.
struct SMALL_BITSTREAM {
    std::string device = "BS1L15";
    std::size_t periphery = 1000;
    std::size_t core = 100000;
    unsigned seed = 1;
    std::size_t firmware = 0;
    std::optional<unsigned> scheme{};
    bool partial = false;
    bool prepared_for_encryption = false; ///< compiled with the option that lets encryption be finalised
};

/// Periphery and core of such a file.
std::vector<std::uint8_t> configuration_of(const SMALL_BITSTREAM& bitstream);

/// A setup whose files lie in a directory of its own, built by the calls that the windows make.
class SETUP_BUILDER
{
public:
    virtual ~SETUP_BUILDER() = default;
    explicit SETUP_BUILDER(const std::string& mode = "PS");

    const PGM_COMMON_XML_VEK_VEK& document() const { return *m_document; }
    PGM_COMMON_XML_VEK_VEK& document() { return *m_document; }
    /// The path of a file in the directory.
    std::string path(const std::string& name) const { return m_directory / name; }
    const TEMPORARY_DIRECTORY& directory() const { return m_directory; }

    /// Writes a bitstream file and adds it to the setup as a bitstream of that id. Its path.
    std::string bitstream(const std::string& id, const SMALL_BITSTREAM& content = {});
    void raw_file(const std::string& id, const std::string& type, const std::string& name,
                  const std::string& bytes);
    void output(const std::string& type, const std::vector<std::string>& bitstreams,
                const std::string& flash = "", const std::vector<std::string>& secondary = {});
    void flash(const std::string& id, const std::string& type);
    void partition(const std::string& flash, const std::string& id, const std::string& start = "auto",
                   const std::string& end = "auto");
    /// `input` is a bitstream when `page` is not empty, else by its id.
    void assign(const std::string& partition, const std::string& input, const std::string& page = "");
    /// The partitions that a device brings along, as the window adds them.
    void reserved(const std::string& flash, bool two_bitstreams, bool puf);

    /// Any values; a refusal fails the test.
    void set(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const VEK_FILE_ASSISTANT::PARAMS& params);

private:
    TEMPORARY_DIRECTORY m_directory;
    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> m_document;
};

/// Writes the container.
void write_bitstream(const std::string& path, const SMALL_BITSTREAM& bitstream);

#endif
