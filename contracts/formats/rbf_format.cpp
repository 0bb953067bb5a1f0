#include "rbf_format.h"

#include "format_text.h"
#include "image_compare.h"

bool RBF_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    return send_image(*request.image, 0, request.image->size(), false, sink, message);
}

bool RBF_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    return equal_to_image(file, *request.image, 0, request.image->size(), false, message);
}

bool RBF_FORMAT::decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const
{
    return send_image(file, 0, file.size(), false, sink, message);
}

bool RBF_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    std::uint32_t crc = 0;
    if (!crc32_of_source(file, crc, message))
        return false;
    facts.facts.push_back({"format", "raw configuration stream"});
    facts.facts.push_back({"data", bytes_text(file.size())});
    facts.facts.push_back({"image CRC-32", hex_text(crc)});
    if (file.size() != 0)
        facts.ranges.push_back({0, file.size()});
    return true;
}
