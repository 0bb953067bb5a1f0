#ifndef RAW_FILE_CONTENT_H
#define RAW_FILE_CONTENT_H

#include "byte_source.h"
#include "setup_view.h"

#include <memory>
#include <string>

/// Another source with the bits of each byte reversed.
class BIT_SWAPPED_SOURCE final : public BYTE_SOURCE
{
public:
    explicit BIT_SWAPPED_SOURCE(std::shared_ptr<const BYTE_SOURCE> base) : m_base(std::move(base)) {}
    std::uint64_t size() const override { return m_base->size(); }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override;

private:
    std::shared_ptr<const BYTE_SOURCE> m_base;
};

/// The data of a raw file and the address at which the file puts it.
struct RAW_FILE_CONTENT {
    std::shared_ptr<const BYTE_SOURCE> bytes;
    std::uint64_t address = 0;  ///< of the first byte; 0 for binary data
    bool has_addresses = false; ///< the file says where its bytes belong (Intel HEX)
};

/// Opens the file of a RAW_FILE element as its type says, bits swapped where it asks for that. False with a
/// whole sentence in `message`, which begins with the path, when the file cannot be read, is no sound Intel
/// HEX file although its type says so, or is empty.
bool open_raw_file(const PGM_COMMON_XML_VEK_RAW_FILE& raw_file, RAW_FILE_CONTENT& content,
                   std::string& message);

/// The same for a path alone, whose extension tells the type.
bool open_raw_file(const std::string& path, RAW_FILE_CONTENT& content, std::string& message);

#endif
