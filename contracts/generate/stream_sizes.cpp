#include "stream_sizes.h"

#include "configuration_stream.h"
#include "format_registry.h"
#include "setup_security.h"

#include <filesystem>
#include <map>

namespace
{

class SIZE_SOURCE final : public BYTE_SOURCE
{
public:
    explicit SIZE_SOURCE(std::uint64_t size) : m_size(size) {}
    std::uint64_t size() const override { return m_size; }
    bool read(std::uint64_t, std::span<std::uint8_t>, std::string& message) const override
    {
        message = "The stream is not built yet.";
        return false;
    }

private:
    std::uint64_t m_size;
};

/// Whether files of the periphery alone are all that is made from the flash device.
bool holds_periphery_alone(const SETUP_VIEW& setup, const std::string& id)
{
    bool periphery = false;
    for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : setup.output_files()) {
        const FORMAT_ROW* row = find_format_row(output_type_of(output->type));
        for (const PGM_COMMON_XML_VEK_FLASH_DEVICE_ID* link : output->flash_device_id) {
            if (link->text == id && row != nullptr) {
                if (row->part != FORMAT_PART::PERIPHERY) {
                    return false;
                }
                periphery = true;
            }
        }
    }
    return periphery;
}

} // namespace

std::shared_ptr<const BYTE_SOURCE> size_source(std::uint64_t size)
{
    return std::make_shared<SIZE_SOURCE>(size);
}

STREAM_PROVIDER real_stream_sizes(const SETUP_VIEW& setup, const PGM_COMMON_XML_VEK_FLASH_DEVICE& device)
{
    const STREAM_SELECTION selection =
        holds_periphery_alone(setup, device.id) ? STREAM_SELECTION::PERIPHERY : STREAM_SELECTION::ALL;
    const auto known = std::make_shared<std::map<std::pair<std::string, bool>, std::uint64_t>>();
    const auto security = std::make_shared<SETUP_SECURITY>();
    FINDINGS of_keys; // told by the check of the keys
    security->load(setup, {}, of_keys);
    return [&setup, selection, options = onchip_options(setup, device), known, security](
               const BITSTREAM_PICK& pick, std::string& message) -> std::shared_ptr<const BYTE_SOURCE> {
        const auto found = known->find({pick.id, pick.bootloader_only});
        if (found != known->end()) {
            return size_source(found->second);
        }
        const PGM_COMMON_XML_VEK_BITSTREAM& bitstream = *setup.bitstreams().find(pick.id);
        std::error_code error;
        const std::string directory = std::filesystem::temp_directory_path(error).string();
        std::vector<STREAM_INPUT> inputs = stream_inputs(bitstream, options);
        security->apply_sizes(bitstream, inputs);
        apply_pick(pick, inputs);
        const auto stream = build_configuration_stream(inputs, directory, message, selection);
        if (!stream) {
            return nullptr;
        }
        known->emplace(std::make_pair(pick.id, pick.bootloader_only), stream->size());
        return size_source(stream->size());
    };
}
