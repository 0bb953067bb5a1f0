// format_tool FORMAT OUTPUT INPUT... [--verify] [--bitswap]
//
// Writes OUTPUT in the format (rbf, ttf, hex, rpd, pof) as a generation does: to a temporary file that is
// renamed, and with --verify read back before that. Several inputs are laid one behind the other into a flash
// image, with the checksum of each, and the map is written beside the output.

#include "atomic_file.h"
#include "flash_image.h"
#include "format_registry.h"

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

bool run(const FORMAT_ROW& row, const std::vector<std::string>& paths, FORMAT_REQUEST& request, bool verify,
         std::string& message)
{
    std::vector<std::shared_ptr<FILE_SOURCE>> inputs;
    std::uint64_t size = 0;
    for (std::size_t i = 1; i != paths.size(); ++i) {
        inputs.push_back(FILE_SOURCE::open(paths[i], message));
        if (!inputs.back())
            return false;
        size += inputs.back()->size();
    }
    request.device = "bench";
    if (row.subject == FORMAT_SUBJECT::STREAM) {
        request.image = inputs.front().get();
        return produce(*row.format, request, paths.front(), verify, message);
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
        if (!image.add(at, input, message) || !crc32_of_source(*input, region.crc, message))
            return false;
        request.regions.push_back(region);
        at += input->size();
    }
    request.image = &image;
    return produce(*row.format, request, paths.front(), verify, message) &&
           produce(*find_format(VEK_MAP_FILE_TYPE), request, paths.front() + ".map", verify, message);
}
} // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, VEK_FILE_TYPE> types = {{"rbf", VEK_RBF_FILE_TYPE},
                                                        {"ttf", VEK_TTF_FILE_TYPE},
                                                        {"hex", VEK_HEX_FILE_TYPE},
                                                        {"rpd", VEK_RPD_FILE_TYPE},
                                                        {"pof", VEK_POF_FILE_TYPE}};
    FORMAT_REQUEST request;
    bool verify = false;
    std::vector<std::string> words;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--verify") == 0)
            verify = true;
        else if (std::strcmp(argv[i], "--bitswap") == 0)
            request.bitswap = true;
        else
            words.emplace_back(argv[i]);
    }
    if (words.size() < 3 || !types.contains(words[0])) {
        std::cerr << "usage: format_tool rbf|ttf|hex|rpd|pof OUTPUT INPUT... [--verify] [--bitswap]\n";
        return 2;
    }
    const FORMAT_ROW* const row = find_format_row(types.at(words[0]));
    words.erase(words.begin());
    std::string message;
    if (run(*row, words, request, verify, message))
        return 0;
    std::cerr << message << '\n';
    return 1;
}
