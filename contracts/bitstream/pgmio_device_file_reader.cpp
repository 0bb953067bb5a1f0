#include "pgmio_device_file_reader.h"

#include "bitstream_file.h"
#include "pgm_device.h"
#include "vek_msgs.h"

#include <memory>

namespace
{

bool read_checked(const FIO_PATH& path, const FIO_PATH& shown_path, bool verify_contents,
                  std::shared_ptr<const BITSTREAM_FILE>& file, const PGM_DEVICE*& device,
                  std::string& message)
{
    const std::string name = shown_path.is_empty() ? path.fullpath() : shown_path.fullpath();
    const std::shared_ptr<const BYTE_SOURCE> bytes = FILE_SOURCE::open(path.fullpath(), message);
    if (!bytes) {
        if (message.starts_with(path.fullpath()))
            message.replace(0, path.fullpath().size(), name);
        return false;
    }
    file = BITSTREAM_FILE::open(bytes, name, message);
    if (!file || (verify_contents && !file->verify(message)))
        return false;
    device = PGM_DEVICE_INDEX::find_by_name(file->device().name);
    if (device == nullptr) {
        message = name + " is for device " + file->device().name + ", which is not in the device database.";
        return false;
    }
    return true;
}

} // namespace

bool PGMIO_BITFIELD::read_oti_icb_data_for_sof(DSET_OTI_DEV_OPTIONS_INFO* options) const
{
    if (!has_option_block())
        return false;
    *options = m_options;
    return true;
}

bool PGMIO_DEVICE_FILE_READER::read_file(const FIO_PATH& path, long* configuration_bits,
                                         PGMIO_BITFIELD** bitfield, const PGM_DEVICE** device,
                                         const FIO_PATH& shown_path, std::string* message,
                                         bool verify_contents, std::vector<PGMIO_REGION>* regions)
{
    std::shared_ptr<const BITSTREAM_FILE> file;
    const PGM_DEVICE* found = nullptr;
    std::string failure;
    if (!read_checked(path, shown_path, verify_contents, file, found, failure)) {
        if (message != nullptr)
            *message = failure;
        else
            vek_report(MSG_VEK::O::FILE_PRECHECK_FAILED(failure));
        return false;
    }
    if (configuration_bits != nullptr)
        *configuration_bits = static_cast<long>(file->configuration_data()->size() * 8);
    if (bitfield != nullptr) {
        const auto scheme =
            static_cast<PGMIO_CONFIG_SCHEME>(file->scheme().value_or(PGMIO_CONFIG_SCHEME_ILLEGAL));
        *bitfield = new PGMIO_BITFIELD(scheme, file->option_word(), file->option_block());
    }
    if (device != nullptr)
        *device = found;
    if (regions != nullptr) {
        regions->clear();
        for (const BITSTREAM_REGION& region : file->regions())
            regions->push_back({region.name, region.offset, region.length});
    }
    return true;
}

bool PGM_CHAIN_ELEMENT::create_chain_element(PGM_CHAIN_ELEMENT* chain, bool read_options,
                                             std::string* message, bool check_device, unsigned image,
                                             bool verify_contents, bool enabled_only)
{
    chain->m_option_map.clear();
    if (!read_options)
        return true;
    std::shared_ptr<const BITSTREAM_FILE> file;
    const PGM_DEVICE* found = nullptr;
    std::string failure;
    bool good = read_checked(chain->m_path, FIO_PATH(), verify_contents, file, found, failure);
    if (good && image != 0) {
        failure = chain->m_path.fullpath() + " holds one image, not " + std::to_string(image + 1) + ".";
        good = false;
    }
    if (good && check_device && found != chain->m_device) {
        failure = chain->m_path.fullpath() + " is for device " + found->name +
                  (chain->m_device == nullptr ? "" : ", not for " + chain->m_device->name) + ".";
        good = false;
    }
    if (!good) {
        if (message != nullptr)
            *message = failure;
        return false;
    }
    for (const auto& [name, value] : file->options())
        if (value || !enabled_only)
            chain->m_option_map.emplace(name, value);
    return true;
}
