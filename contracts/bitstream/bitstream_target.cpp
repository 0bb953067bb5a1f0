#include "bitstream_target.h"

#include "atomic_file.h"
#include "pgm_device.h"
#include "scheme_words.h"

const PGM_DEVICE* find_fpga(const std::string& name, std::string& message)
{
    const PGM_DEVICE* const device = PGM_DEVICE_INDEX::find_by_name(name);
    if (device == nullptr) {
        message = "Device " + name + " is not in the device database; \"list devices\" names those that are.";
        return nullptr;
    }
    if (device->device_class != DEV_CLASS_FPGA) {
        message = "Device " + device->name + " is a flash device; a bitstream is for an FPGA.";
        return nullptr;
    }
    return device;
}

bool parse_scheme_word(const std::string& word, std::optional<std::uint32_t>& scheme, std::string& message)
{
    scheme.reset();
    if (word.empty())
        return true;
    PGMIO_CONFIG_SCHEME found = PGMIO_CONFIG_SCHEME_ILLEGAL;
    if (!scheme_from_word(word, found)) {
        message = "\"" + word + "\" is no configuration scheme; the schemes are";
        for (const std::string& known : scheme_words())
            message += " " + known;
        message += ".";
        return false;
    }
    scheme = found;
    return true;
}

bool write_bitstream_file(const BITSTREAM_WRITER& writer, const std::string& path, std::string& message)
{
    const auto file = ATOMIC_FILE::create(path, 0666, message);
    return file && writer.write(*file, message) && file->commit(message);
}
