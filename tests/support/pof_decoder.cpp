#include "pof_decoder.h"

#include <cstring>

std::uint32_t plain_crc32(const std::uint8_t* bytes, std::size_t size)
{
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::size_t i = 0; i != size; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit != 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320u : 0u);
    }
    return ~crc;
}

namespace
{
std::uint64_t number(const std::vector<std::uint8_t>& bytes, std::size_t& at, std::size_t size)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i != size; ++i)
        value |= std::uint64_t(bytes.at(at + i)) << 8 * i;
    at += size;
    return value;
}

std::string text(const std::vector<std::uint8_t>& bytes, std::size_t& at)
{
    const std::size_t size = number(bytes, at, 2);
    std::string result;
    for (std::size_t i = 0; i != size; ++i)
        result.push_back(static_cast<char>(bytes.at(at + i)));
    at += size;
    return result;
}

DECODED_POF decode(const std::vector<std::uint8_t>& file, bool jic)
{
    DECODED_POF pof;
    const auto fail = [&](const char* reason) {
        pof.fault = reason;
        return pof;
    };
    if (file.size() < 8 || std::memcmp(file.data(), jic ? "\x89JIC\r\n\x1A\n" : "\x89POF\r\n\x1A\n", 8) != 0)
        return fail("signature");
    std::uint64_t total = 0;
    for (std::size_t at = 8; at != file.size();) {
        const std::string tag(file.begin() + static_cast<std::ptrdiff_t>(at),
                              file.begin() + static_cast<std::ptrdiff_t>(at) + 4);
        std::size_t place = at + 4;
        const std::size_t length = number(file, place, 4);
        const std::size_t end = place + length;
        std::size_t trailer = end;
        if (number(file, trailer, 4) != plain_crc32(file.data() + at, 8 + length))
            return fail("chunk checksum");
        if (at == 8 && tag != "HEAD")
            return fail("head first");
        if (tag == "HEAD") {
            if (number(file, place, 2) != 1)
                return fail("version");
            place += 2;
            pof.image.assign(number(file, place, 8), 0xFF);
            pof.device = text(file, place);
        } else if (tag == "LOAD" && jic) {
            DECODED_POF::LOADER& loader = pof.loader;
            loader.name = text(file, place);
            loader.idcode = number(file, place, 4);
            loader.instruction_length = number(file, place, 1);
            loader.bridge = number(file, place, 4);
            for (int i = 0; i != 3; ++i)
                loader.jedec_id = loader.jedec_id << 8 | number(file, place, 1);
            loader.address_bytes = number(file, place, 1);
            loader.sector = number(file, place, 4);
            loader.page = number(file, place, 4);
            for (int i = 0; i != 6; ++i)
                loader.commands.push_back(static_cast<unsigned>(number(file, place, 1)));
        } else if (tag == "PART") {
            DECODED_POF::PARTITION part;
            part.start = number(file, place, 8);
            part.used = number(file, place, 8);
            part.last = number(file, place, 8);
            part.crc = number(file, place, 4);
            part.has_page = number(file, place, 1) != 0;
            part.page = number(file, place, 4);
            part.name = text(file, place);
            part.input = text(file, place);
            pof.partitions.push_back(part);
        } else if (tag == "DATA") {
            ++pof.data_chunks;
            const std::size_t address = number(file, place, 8);
            total += end - place;
            for (; place != end; ++place)
                pof.image.at(address + place - (end - (length - 8))) = file.at(place);
        } else if (tag == "DONE") {
            if (number(file, place, 8) != total)
                return fail("data size");
            if (number(file, place, 4) != plain_crc32(pof.image.data(), pof.image.size()))
                return fail("image checksum");
            return trailer == file.size() && place == end ? pof : fail("end");
        } else {
            return fail("tag");
        }
        if (place != end)
            return fail("chunk length");
        at = trailer;
    }
    return fail("no last chunk");
}
} // namespace

DECODED_POF decode_pof(const std::vector<std::uint8_t>& file)
{
    return decode(file, false);
}

DECODED_POF decode_jic(const std::vector<std::uint8_t>& file)
{
    return decode(file, true);
}
