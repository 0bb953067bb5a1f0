#include "raw_file_content.h"

#include "bit_swap.h"
#include "fio_path.h"
#include "fio_types.h"
#include "intel_hex_reader.h"
#include "vek_file_assistant.h"

namespace
{

bool open_content(const std::string& path, bool is_hex, bool bitswap, RAW_FILE_CONTENT& content,
                  std::string& message)
{
    const std::shared_ptr<const BYTE_SOURCE> file = FILE_SOURCE::open(path, message);
    if (!file) {
        return false;
    }
    if (is_hex) {
        const auto image = INTEL_HEX_IMAGE::open(file, path, message);
        if (!image) {
            return false;
        }
        content.address = image->address();
        content.has_addresses = true;
        content.bytes = image;
    } else if (file->size() == 0) {
        message = path + " is empty; choose a file with data.";
        return false;
    } else {
        content.bytes = file;
    }
    if (bitswap) {
        content.bytes = std::make_shared<BIT_SWAPPED_SOURCE>(content.bytes);
    }
    return true;
}

} // namespace

bool BIT_SWAPPED_SOURCE::read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const
{
    if (!m_base->read(offset, into, message)) {
        return false;
    }
    swap_bits(into);
    return true;
}

bool open_raw_file(const PGM_COMMON_XML_VEK_RAW_FILE& raw_file, RAW_FILE_CONTENT& content,
                   std::string& message)
{
    return open_content(absolute_path(raw_file.text),
                        VEK_FILE_ASSISTANT::convert_string_to_xml_enum(raw_file.type) ==
                            PGM_COMMON_XML_ENUM_HEX,
                        VEK_FILE_ASSISTANT::convert_string_to_bool(raw_file.bitswap), content, message);
}

bool open_raw_file(const std::string& path, RAW_FILE_CONTENT& content, std::string& message)
{
    const FIO_EXTENSION_TYPE extension = fio_get_extension_type(FIO_PATH(path).extension());
    return open_content(absolute_path(path), extension == FIO_EXT_HEX || extension == FIO_EXT_IHEX, false,
                        content, message);
}
