#ifndef INTEL_HEX_READER_H
#define INTEL_HEX_READER_H

#include "byte_source.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// A run of data records that follow each other in the file and in their addresses.
struct INTEL_HEX_SEGMENT {
    std::uint64_t address = 0;
    std::uint64_t length = 0;
    std::uint64_t line = 0; ///< of its first record
    /// Places in the file from which the segment can be read, one for about each CHECKPOINT_DISTANCE of
    /// text: first and number in INTEL_HEX_FILE::checkpoints.
    std::size_t checkpoint_begin = 0;
    std::size_t checkpoint_count = 0;
};

/// What an Intel HEX file of any origin holds, without the data itself: the file is checked whole and
/// indexed, and its bytes are decoded again when they are asked for. The index costs a few bytes for each 64
/// KiB of text and for each break in the addresses, so that a large file needs no large memory.
///
/// Read are records of type 00 to 05, in upper or lower case, with any line ends and blank lines, in any
/// order of addresses. Refused, each with the line: what is no record, wrong checksums and lengths, data that
/// wraps around its segment or leaves the 32 bit addresses, data given twice, anything behind the end record,
/// no end record.
struct INTEL_HEX_FILE {
    static constexpr std::uint64_t CHECKPOINT_DISTANCE = 0x10000;
    static constexpr std::size_t MOST_SEGMENTS = 1 << 18;

    struct CHECKPOINT {
        std::uint64_t data_offset; ///< within the segment
        std::uint64_t file_offset; ///< start of the line whose record holds that byte first
    };

    std::vector<INTEL_HEX_SEGMENT> segments; ///< ascending by address, never overlapping, none empty
    std::vector<CHECKPOINT> checkpoints;
    std::uint64_t records = 0;   ///< all of them, the end record included
    std::uint64_t data_size = 0; ///< bytes in data records
    bool has_entry = false;
    std::uint32_t entry = 0; ///< what a record of type 03 (CS and IP) or 05 gives

    /// First address, and the address behind the last; both 0 without data.
    std::uint64_t begin() const { return segments.empty() ? 0 : segments.front().address; }
    std::uint64_t end() const
    {
        return segments.empty() ? 0 : segments.back().address + segments.back().length;
    }

    /// Checks and indexes `file`. False with a sentence that begins "Line 12: " where a line is at fault.
    static bool read(const BYTE_SOURCE& file, INTEL_HEX_FILE& result, std::string& message);
};

/// The bytes from the first address of an Intel HEX file to its last, with 0xFF where it has none.
class INTEL_HEX_IMAGE final : public BYTE_SOURCE
{
public:
    static constexpr std::uint8_t FILL = 0xFF;

    /// `file` must outlive the image.
    INTEL_HEX_IMAGE(const BYTE_SOURCE& file, INTEL_HEX_FILE contents)
        : m_file(file), m_contents(std::move(contents))
    {
    }

    /// Keeps the file alive itself.
    INTEL_HEX_IMAGE(std::shared_ptr<const BYTE_SOURCE> file, INTEL_HEX_FILE contents)
        : m_owned(std::move(file)), m_file(*m_owned), m_contents(std::move(contents))
    {
    }

    /// Opens an input file. Null with a sentence that begins with `name` in `message` when it is no sound
    /// Intel HEX file or holds no data.
    static std::shared_ptr<INTEL_HEX_IMAGE> open(std::shared_ptr<const BYTE_SOURCE> file,
                                                 const std::string& name, std::string& message);

    /// Address of the byte at offset 0.
    std::uint64_t address() const { return m_contents.begin(); }
    const INTEL_HEX_FILE& contents() const { return m_contents; }

    std::uint64_t size() const override { return m_contents.end() - m_contents.begin(); }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override;

private:
    bool read_segment(const INTEL_HEX_SEGMENT& segment, std::uint64_t offset, std::span<std::uint8_t> into,
                      std::string& message) const;

    std::shared_ptr<const BYTE_SOURCE> m_owned;
    const BYTE_SOURCE& m_file;
    INTEL_HEX_FILE m_contents;
};

#endif
