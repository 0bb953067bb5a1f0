#include "inspect.h"

#include "atomic_file.h"
#include "pgm_device.h"
#include "same_file.h"

#include <algorithm>

namespace
{

std::shared_ptr<FILE_SOURCE> open_known(const std::string& path, INSPECTED_KIND& kind, std::string& message)
{
    const auto file = FILE_SOURCE::open(path, message);
    if (!file)
        return nullptr;
    std::array<std::uint8_t, BITSTREAM_MAGIC.size()> first{};
    const std::span<std::uint8_t> there(
        first.data(), static_cast<std::size_t>(std::min<std::uint64_t>(file->size(), first.size())));
    if (!file->read(0, there, message))
        return nullptr;
    kind = INSPECTED_KIND::OTHER;
    if (first == BITSTREAM_MAGIC)
        kind = INSPECTED_KIND::BITSTREAM;
    else if (is_configuration_stream(*file))
        kind = INSPECTED_KIND::STREAM;
    return file;
}

std::string hexadecimal(std::span<const std::uint8_t> bytes)
{
    static constexpr char DIGITS[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 0x0F];
    }
    return text;
}

bool is_wanted(STREAM_PART part, EXTRACTED_PART wanted)
{
    switch (wanted) {
    case EXTRACTED_PART::CORE:
        return part == STREAM_PART::CORE;
    case EXTRACTED_PART::PERIPHERY:
        return part == STREAM_PART::PERIPHERY;
    case EXTRACTED_PART::IMAGE:
        return part == STREAM_PART::CORE || part == STREAM_PART::PERIPHERY;
    }
    return false;
}

/// Passes the wanted parts of a stream on.
class EXTRACTION final : public STREAM_DATA_SINK
{
public:
    EXTRACTION(BYTE_SINK& target, EXTRACTED_PART wanted) : m_target(target), m_wanted(wanted) {}
    bool write(std::size_t, STREAM_PART part, std::span<const std::uint8_t> bytes,
               std::string& message) override
    {
        return !is_wanted(part, m_wanted) || m_target.write(bytes, message);
    }

private:
    BYTE_SINK& m_target;
    EXTRACTED_PART m_wanted;
};

bool verify_open_stream(const std::string& path, const BYTE_SOURCE& bytes, STREAM_FACTS& facts,
                        STREAM_DATA_SINK* data, std::string& message)
{
    if (read_configuration_stream(bytes, true, facts, data, message))
        return true;
    message = path + ": " + message;
    return false;
}

bool extract_from_bitstream(std::shared_ptr<const BYTE_SOURCE> bytes, const std::string& path,
                            EXTRACTED_PART part, BYTE_SINK& target, std::string& message)
{
    const auto file = BITSTREAM_FILE::open(std::move(bytes), path, message);
    if (!file || !file->verify(message))
        return false;
    for (const auto& [tag, stream_part] :
         {std::pair(SECTION_PERIPHERY, STREAM_PART::PERIPHERY), std::pair(SECTION_CORE, STREAM_PART::CORE)})
        if (is_wanted(stream_part, part) && file->find(tag) != nullptr &&
            !copy_source(*file->section(tag), target, message))
            return false;
    return true;
}

} // namespace

bool identify_file(const std::string& path, INSPECTED_KIND& kind, std::string& message)
{
    return open_known(path, kind, message) != nullptr;
}

bool inspect_bitstream(const std::string& path, BITSTREAM_FACTS& facts, std::string& message)
{
    const auto file = BITSTREAM_FILE::open(path, message);
    if (!file)
        return false;
    facts = {};
    facts.kind = file->kind();
    facts.version = file->header().version;
    facts.size = file->size();
    facts.device = file->device();
    const PGM_DEVICE* const known = PGM_DEVICE_INDEX::find_by_name(facts.device.name);
    facts.device_known = known != nullptr && known->idcode == facts.device.idcode;
    facts.scheme = file->scheme();
    facts.options = file->options();
    facts.option_word = file->option_word();
    facts.option_block = file->option_block();
    facts.regions = file->regions();
    facts.sections = file->header().sections;
    const auto digest = file->section(SECTION_DIGEST);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(digest->size()));
    if (!digest->read(0, bytes, message))
        return false;
    facts.digest = hexadecimal(bytes);
    return true;
}

bool inspect_stream(const std::string& path, STREAM_FACTS& facts, std::string& message)
{
    const auto file = FILE_SOURCE::open(path, message);
    return file && verify_open_stream(path, *file, facts, nullptr, message);
}

bool verify_file(const std::string& path, std::string& message)
{
    INSPECTED_KIND kind = INSPECTED_KIND::OTHER;
    const auto file = open_known(path, kind, message);
    if (!file)
        return false;
    switch (kind) {
    case INSPECTED_KIND::BITSTREAM: {
        const auto bitstream = BITSTREAM_FILE::open(file, path, message);
        return bitstream && bitstream->verify(message);
    }
    case INSPECTED_KIND::STREAM: {
        STREAM_FACTS facts;
        return verify_open_stream(path, *file, facts, nullptr, message);
    }
    case INSPECTED_KIND::OTHER:
        break;
    }
    message = path + " is neither a bitstream file nor a configuration stream.";
    return false;
}

bool extract_from_file(const std::string& path, EXTRACTED_PART part, const std::string& output_path,
                       std::string& message)
{
    INSPECTED_KIND kind = INSPECTED_KIND::OTHER;
    const auto file = open_known(path, kind, message);
    if (!file)
        return false;
    if (same_file(path, output_path)) {
        message = path + " is the input and cannot be the output too; choose another name.";
        return false;
    }
    if (kind == INSPECTED_KIND::OTHER) {
        message = path + " is neither a bitstream file nor a configuration stream.";
        return false;
    }
    const auto target = ATOMIC_FILE::create(output_path, 0666, message);
    if (!target)
        return false;
    if (kind == INSPECTED_KIND::BITSTREAM) {
        if (!extract_from_bitstream(file, path, part, *target, message))
            return false;
    } else {
        EXTRACTION extraction(*target, part);
        STREAM_FACTS facts;
        if (!verify_open_stream(path, *file, facts, &extraction, message))
            return false;
    }
    if (target->size() == 0) {
        message =
            path + " holds no " + (part == EXTRACTED_PART::PERIPHERY ? "periphery data." : "core data.");
        return false;
    }
    return target->commit(message);
}
