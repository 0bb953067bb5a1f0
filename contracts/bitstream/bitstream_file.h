#ifndef BITSTREAM_FILE_H
#define BITSTREAM_FILE_H

#include "bitstream_records.h"
#include "byte_source.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A compiled bitstream (SOF) or a partial one (PMSF). Byte layout: docs/formats/bitstream-container.md.
enum class BITSTREAM_KIND { SOF, PMSF };

/// Four letters that name a section, as they stand in the file.
using SECTION_TAG = std::array<char, 4>;

inline constexpr SECTION_TAG SECTION_DEVICE = {'D', 'E', 'V', 'C'};
inline constexpr SECTION_TAG SECTION_SCHEME = {'S', 'C', 'H', 'M'};
inline constexpr SECTION_TAG SECTION_OPTIONS = {'O', 'P', 'T', 'S'};
inline constexpr SECTION_TAG SECTION_OPTION_BLOCK = {'O', 'T', 'I', 'B'};
inline constexpr SECTION_TAG SECTION_REGIONS = {'R', 'E', 'G', 'N'};
inline constexpr SECTION_TAG SECTION_PERIPHERY = {'P', 'E', 'R', 'I'};
inline constexpr SECTION_TAG SECTION_CORE = {'C', 'O', 'R', 'E'};
inline constexpr SECTION_TAG SECTION_FIRMWARE = {'F', 'I', 'R', 'M'};
inline constexpr SECTION_TAG SECTION_BOOTLOADER = {'H', 'P', 'S', 'B'};
inline constexpr SECTION_TAG SECTION_DIGEST = {'H', 'A', 'S', 'H'};

/// The first bytes of every bitstream file.
inline constexpr std::array<std::uint8_t, 8> BITSTREAM_MAGIC = {0x89, 'I', 'W', 'B', 0x0D, 0x0A, 0x1A, 0x0A};
inline constexpr std::uint16_t BITSTREAM_VERSION = 1;
/// The header (magic, directory, device record) lies within this many bytes, so one read brings all of it.
inline constexpr std::size_t BITSTREAM_HEADER_LIMIT = 4096;
inline constexpr std::size_t BITSTREAM_SECTION_LIMIT = 64;
/// No record section (device, scheme, options, option block, regions) is longer than this.
inline constexpr std::uint64_t BITSTREAM_RECORD_LIMIT = 64 * 1024;

/// One entry of the section directory.
struct BITSTREAM_SECTION {
    SECTION_TAG tag{};
    std::uint64_t offset = 0; ///< in the file, bytes
    std::uint64_t length = 0; ///< bytes
    std::uint32_t crc = 0;    ///< CRC-32 of the content, as the directory states it; 0 for the digest
};

/// What a section holds in words, "core data" for CORE; "unknown data" for a tag of a later version.
std::string section_description(const SECTION_TAG& tag);

/// What the first read of a file tells.
struct BITSTREAM_HEADER {
    BITSTREAM_KIND kind = BITSTREAM_KIND::SOF;
    std::uint16_t version = 0;
    std::vector<BITSTREAM_SECTION> sections; ///< in file order, without gaps, the digest last
    BITSTREAM_DEVICE device;
};

/// Reads the header from the first bytes of a file (all of it, or BITSTREAM_HEADER_LIMIT) that is `file_size`
/// bytes long: magic, version, directory and its checksum, all lengths against the file, the device record
/// and its checksum. `reason` is the rest of a sentence that begins with the name of the file, such as "is
/// not a bitstream file".
bool parse_bitstream_header(std::span<const std::uint8_t> first_bytes, std::uint64_t file_size,
                            BITSTREAM_HEADER& header, std::string& reason);

/// Reader of one bitstream file. Opening reads the header and the small records; the data sections are ranges
/// of the open file, so the size of the file costs nothing. Immutable once open; any thread may read.
class BITSTREAM_FILE
{
public:
    /// Null with a whole sentence in `message`, which begins with `path`.
    static std::shared_ptr<const BITSTREAM_FILE> open(const std::string& path, std::string& message);
    /// The same over any bytes; messages begin with `name`.
    static std::shared_ptr<const BITSTREAM_FILE> open(std::shared_ptr<const BYTE_SOURCE> bytes,
                                                      const std::string& name, std::string& message);

    const std::string& name() const { return m_name; }
    std::uint64_t size() const { return m_bytes->size(); }
    const BITSTREAM_HEADER& header() const { return m_header; }
    BITSTREAM_KIND kind() const { return m_header.kind; }
    const BITSTREAM_DEVICE& device() const { return m_header.device; }
    /// Number of the PGMIO_CONFIG_SCHEME; nothing when the file is not tied to one.
    const std::optional<std::uint32_t>& scheme() const { return m_scheme; }
    const BITSTREAM_OPTIONS& options() const { return m_options; }
    /// 0 when the file has no on-chip option block.
    std::uint32_t option_word() const { return m_option_word; }
    const DSET_OTI_DEV_OPTIONS_INFO& option_block() const { return m_option_block; }
    const std::vector<BITSTREAM_REGION>& regions() const { return m_regions; }

    /// The section's entry, null when the file has none of that tag.
    const BITSTREAM_SECTION* find(const SECTION_TAG& tag) const;
    /// The section's bytes; null when the file has none of that tag.
    std::shared_ptr<const BYTE_SOURCE> section(const SECTION_TAG& tag) const;

    /// Periphery data followed by core data.
    std::shared_ptr<const BYTE_SOURCE> configuration_data() const;

    /// Walks the whole file: the checksum of every section, known or not, and the digest. False with a whole
    /// sentence in `message` that names the section and its offset.
    bool verify(std::string& message) const;

private:
    BITSTREAM_FILE() = default;
    bool read_records(std::string& reason);
    bool read_record(const SECTION_TAG& tag, std::vector<std::uint8_t>& bytes, std::string& reason) const;

    std::shared_ptr<const BYTE_SOURCE> m_bytes;
    std::string m_name;
    BITSTREAM_HEADER m_header;
    std::optional<std::uint32_t> m_scheme;
    BITSTREAM_OPTIONS m_options;
    std::uint32_t m_option_word = 0;
    DSET_OTI_DEV_OPTIONS_INFO m_option_block;
    std::vector<BITSTREAM_REGION> m_regions;
};

#endif
