#ifndef POF_READER_H
#define POF_READER_H

#include "chunk_file.h"
#include "format.h"
#include "pof_layout.h"

#include <cstdint>
#include <span>
#include <string>

/// What a POF_READER hands over, in the order of the file. The loader comes from a JIC alone.
class POF_VISITOR
{
public:
    virtual ~POF_VISITOR() = default;
    virtual bool head(const std::string& device, std::uint64_t image_size, std::string& message) = 0;
    virtual bool loader(const JTAG_TARGET& target, const SERIAL_FLASH& flash, std::string& message) = 0;
    virtual bool region(const IMAGE_REGION& region, std::string& message) = 0;
    /// `length` bytes of fill from `address` on.
    virtual bool fill(std::uint64_t address, std::uint64_t length, std::string& message) = 0;
    virtual bool data(std::uint64_t address, std::span<const std::uint8_t> bytes, std::string& message) = 0;
    virtual bool done(std::uint32_t image_crc, std::string& message) = 0;
};

/// Reads a flash file from front to back and holds it to all of its rules: signature, version, lengths,
/// checksums, order, addresses, end. Whoever visits sees each byte of the image once, as data or as fill.
class POF_READER
{
public:
    POF_READER(const pof::KIND& kind, const BYTE_SOURCE& file);

    bool read(POF_VISITOR& visitor, std::string& message);

private:
    bool head(const CHUNK& chunk, POF_VISITOR& visitor, std::string& message);
    bool load(const CHUNK& chunk, POF_VISITOR& visitor, std::string& message);
    bool part(const CHUNK& chunk, POF_VISITOR& visitor, std::string& message);
    bool data(const CHUNK& chunk, POF_VISITOR& visitor, std::string& message);
    bool done(const CHUNK& chunk, POF_VISITOR& visitor, std::string& message);
    bool fill_to(std::uint64_t address, POF_VISITOR& visitor, std::string& message);
    bool refuse(const std::string& reason, std::string& message) const;

    const pof::KIND& m_kind;
    CHUNK_READER m_chunks;
    std::uint64_t m_image_size = 0;
    std::uint64_t m_address = 0; ///< behind the last byte handed over
    std::uint64_t m_data_size = 0;
    std::uint32_t m_crc = 0;
};

#endif
