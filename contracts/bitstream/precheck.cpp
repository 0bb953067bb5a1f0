#include "precheck.h"

#include "bitstream_file.h"
#include "fio_path.h"
#include "fio_types.h"
#include "pgm_device.h"

#include <algorithm>
#include <array>

namespace
{

bool has_bitstream_extension(const std::string& path)
{
    switch (fio_get_extension_type(FIO_PATH(path).extension())) {
    case FIO_EXT_SOF:
    case FIO_EXT_CSOF:
    case FIO_EXT_RSOF:
    case FIO_EXT_PMSF:
        return true;
    default:
        return false;
    }
}

} // namespace

bool precheck_bitstream_file(const std::string& path, bool must_be_bitstream, const PGM_DEVICE** device,
                             std::string& device_name, std::string& message)
{
    *device = nullptr;
    device_name.clear();
    const std::string name = FIO_PATH(path).filename();
    const auto file = FILE_SOURCE::open(path, message);
    if (!file) {
        // The user knows the file by its name; the directory would only fill the line.
        if (!name.empty() && message.starts_with(path))
            message.replace(0, path.size(), name);
        return false;
    }
    std::array<std::uint8_t, BITSTREAM_HEADER_LIMIT> buffer;
    const std::span<std::uint8_t> first(
        buffer.data(), static_cast<std::size_t>(std::min<std::uint64_t>(file->size(), buffer.size())));
    if (!file->read(0, first, message))
        return false;
    const bool has_magic = first.size() >= BITSTREAM_MAGIC.size() &&
                           std::equal(BITSTREAM_MAGIC.begin(), BITSTREAM_MAGIC.end(), first.begin());
    if (!must_be_bitstream && !has_magic && !has_bitstream_extension(path))
        return true;
    BITSTREAM_HEADER header;
    std::string reason;
    if (!parse_bitstream_header(first, file->size(), header, reason)) {
        message = name + " " + reason + ".";
        return false;
    }
    device_name = header.device.name;
    const PGM_DEVICE* const found = PGM_DEVICE_INDEX::find_by_name(device_name);
    if (found == nullptr || found->device_class != DEV_CLASS_FPGA) {
        message = name + " is for device " + device_name + ", which is not in the device database.";
        return false;
    }
    if (found->idcode != header.device.idcode) {
        message = name + " is for a device " + device_name +
                  " with another JTAG IDCODE than the device database has.";
        return false;
    }
    *device = found;
    device_name = found->name;
    return true;
}
