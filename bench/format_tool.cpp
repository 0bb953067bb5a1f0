// format_tool FORMAT OUTPUT INPUT... [--verify] [--bitswap] [--stream]
//
// Writes OUTPUT in the format (rbf, ttf, hex, svf, jam, jbc, rpd, pof) as a generation does: to a temporary
// file that is renamed, and with --verify read back before that. Several inputs are laid one behind the other
// into a flash image, with the checksum of each, and the map is written beside the output. With --stream the
// input is a bitstream file, of which the configuration stream is built first, with --lz4 compressed;
// "format_tool pack OUTPUT INPUT" makes one, and "format_tool lz4 OUTPUT INPUT" writes compressed frames
// alone, each behind its length.

#include "atomic_file.h"
#include "configuration_stream.h"
#include "flash_image.h"
#include "format_registry.h"
#include "frame_compressor.h"
#include "pack.h"
#include "region_checksums.h"

#include <array>
#include <cstring>
#include <iostream>
#include <map>

namespace
{
bool produce(const FORMAT& format, const FORMAT_REQUEST& request, const std::string& path, bool verify,
             std::string& message)
{
    const std::unique_ptr<ATOMIC_FILE> file = ATOMIC_FILE::create(path, 0644, message);
    if (!file || !format.write(request, *file, message))
        return false;
    if (verify) {
        const std::shared_ptr<const BYTE_SOURCE> written = file->read_back(message);
        if (!written || !format.verify(request, *written, message))
            return false;
    }
    return file->commit(message);
}

struct SWITCHES {
    bool verify = false;
    bool stream = false;
    bool lz4 = false;
};

bool pack(const std::string& input, const std::string& output, std::string& message)
{
    PACK_REQUEST request;
    request.device = "ZR9A041"; // takes 80 MiB
    request.core_path = input;
    request.output_path = output;
    return pack_bitstream(request, message);
}

bool compress(const std::string& input, const std::string& output, std::string& message)
{
    const std::shared_ptr<FILE_SOURCE> source = FILE_SOURCE::open(input, message);
    const std::unique_ptr<ATOMIC_FILE> file = source ? ATOMIC_FILE::create(output, 0644, message) : nullptr;
    if (!file)
        return false;
    FRAME_COMPRESSOR compressor(*source, STREAM_METHOD::LZ4);
    FRAME_BLOCK block;
    while (compressor.next(block, message)) {
        const auto length = static_cast<std::uint32_t>(block.stored().size());
        const std::array<std::uint8_t, 4> bytes = {
            static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(length >> 8),
            static_cast<std::uint8_t>(length >> 16), static_cast<std::uint8_t>(length >> 24)};
        if (!file->write(bytes, message) || !file->write(block.stored(), message))
            return false;
    }
    return compressor.at_end() && file->commit(message);
}

bool run(const FORMAT_ROW& row, const std::vector<std::string>& paths, FORMAT_REQUEST& request,
         const SWITCHES& switches, std::string& message)
{
    request.device = "bench";
    request.target = {"bench", 0x10A15BC7, 10};
    if (switches.stream) {
        STREAM_INPUT input;
        input.path = paths[1];
        input.compression = switches.lz4;
        const auto stream = build_configuration_stream({input}, ".", message);
        request.image = stream.get();
        return stream && produce(*row.format, request, paths.front(), switches.verify, message);
    }
    std::vector<std::shared_ptr<FILE_SOURCE>> inputs;
    std::uint64_t size = 0;
    for (std::size_t i = 1; i != paths.size(); ++i) {
        inputs.push_back(FILE_SOURCE::open(paths[i], message));
        if (!inputs.back())
            return false;
        size += inputs.back()->size();
    }
    if (row.subject == FORMAT_SUBJECT::STREAM) {
        request.image = inputs.front().get();
        return produce(*row.format, request, paths.front(), switches.verify, message);
    }

    FLASH_IMAGE image(size);
    std::uint64_t at = 0;
    for (const std::shared_ptr<FILE_SOURCE>& input : inputs) {
        IMAGE_REGION region;
        region.name = "P" + std::to_string(request.regions.size());
        region.start = at;
        region.length = input->size();
        region.block_end = at + input->size() - 1;
        region.input = input->path().substr(input->path().rfind('/') + 1);
        if (!image.add(at, input, message))
            return false;
        request.regions.push_back(region);
        at += input->size();
    }
    // As the generation does: the writer of the image finds the checksums for the map.
    REGION_CHECKSUMS checksums(image, request.regions);
    const auto add_checksums = [&] {
        for (std::size_t i = 0; i != request.regions.size(); ++i)
            if (!checksums.get(i, request.regions[i].crc, message))
                return false;
        return true;
    };
    const std::unique_ptr<const BYTE_SOURCE> listening = checksums.listen();
    request.image = listening.get();
    return (!row.format->tells_checksums() || add_checksums()) &&
           produce(*row.format, request, paths.front(), switches.verify, message) && add_checksums() &&
           produce(*find_format(VEK_MAP_FILE_TYPE), request, paths.front() + ".map", switches.verify,
                   message);
}
} // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, VEK_FILE_TYPE> types = {
        {"rbf", VEK_RBF_FILE_TYPE}, {"ttf", VEK_TTF_FILE_TYPE}, {"hex", VEK_HEX_FILE_TYPE},
        {"svf", VEK_SVF_FILE_TYPE}, {"jam", VEK_JAM_FILE_TYPE}, {"jbc", VEK_JBC_FILE_TYPE},
        {"rpd", VEK_RPD_FILE_TYPE}, {"pof", VEK_POF_FILE_TYPE}};
    FORMAT_REQUEST request;
    SWITCHES switches;
    std::vector<std::string> words;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--verify") == 0)
            switches.verify = true;
        else if (std::strcmp(argv[i], "--bitswap") == 0)
            request.bitswap = true;
        else if (std::strcmp(argv[i], "--stream") == 0)
            switches.stream = true;
        else if (std::strcmp(argv[i], "--lz4") == 0)
            switches.lz4 = true;
        else
            words.emplace_back(argv[i]);
    }
    const bool packs = words.size() == 3 && words[0] == "pack";
    const bool compresses = words.size() == 3 && words[0] == "lz4";
    if (words.size() < 3 || (!packs && !compresses && !types.contains(words[0]))) {
        std::cerr << "usage: format_tool rbf|ttf|hex|svf|jam|jbc|rpd|pof OUTPUT INPUT... [--verify] "
                     "[--bitswap] [--stream] [--lz4]\n       format_tool pack|lz4 OUTPUT INPUT\n";
        return 2;
    }
    const std::string word = words[0];
    words.erase(words.begin());
    std::string message;
    if (packs        ? pack(words[1], words[0], message)
        : compresses ? compress(words[1], words[0], message)
                     : run(*find_format_row(types.at(word)), words, request, switches, message))
        return 0;
    std::cerr << message << '\n';
    return 1;
}
