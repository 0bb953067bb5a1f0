#include "programming_file.h"

#include "atomic_file.h"
#include "fio_path.h"
#include "vek_db.h"

#include <algorithm>
#include <filesystem>

namespace
{

std::string key_of(std::string name)
{
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == ' ' || c == '-'; }, '_');
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return name;
}

JSON region_json(const IMAGE_REGION& region)
{
    return JSON{{"name", region.name},
                {"start", hex_text(region.start)},
                {"end", hex_text(region.block_end)},
                {"used_bytes", region.length},
                {"page", region.has_page ? JSON(region.page) : JSON()},
                {"files", region.input},
                {"crc32", hex_text(region.crc)}};
}

/// The row of the format that the extension stands for. Of the types that share one the first counts: they
/// share the format too.
const FORMAT_ROW* format_row_of_file(const std::string& path)
{
    const FIO_EXTENSION_TYPE extension = fio_get_extension_type(FIO_PATH(path).extension());
    if (extension == FIO_INVALID_EXTENSION) {
        return nullptr;
    }
    const auto rows = get_format_rows();
    const auto row = std::find_if(rows.begin(), rows.end(), [extension](const FORMAT_ROW& one) {
        return VEK_DB::get_fio_ext_enum(one.type) == extension;
    });
    return row == rows.end() ? nullptr : &*row;
}

/// Whether the file carries check sums of its own. A raw image has none, and a map tells about another file.
bool carries_check_sums(VEK_FILE_TYPE type)
{
    switch (VEK_DB::get_fio_ext_enum(type)) {
    case FIO_EXT_RPD:
    case FIO_EXT_MAP:
        return false;
    default:
        return true;
    }
}

/// The stream that a file carries in another spelling has its own check sums besides those of the file.
bool check_stream_within(const std::string& path, const FORMAT_ROW& row, const BYTE_SOURCE& file,
                         std::string& message)
{
    std::error_code error;
    const auto spool = SPOOL_FILE::create(std::filesystem::temp_directory_path(error).string(), message);
    if (!spool) {
        return false;
    }
    std::string reason;
    if (!row.format->decode(file, *spool, reason)) {
        return true; // inspection has read all that there is; this format carries no image
    }
    const auto stream = spool->source(message);
    STREAM_FACTS facts;
    if (stream && read_configuration_stream(*stream, true, facts, nullptr, reason)) {
        return true;
    }
    message = stream ? path + ": in the configuration stream that the file carries: " + reason : message;
    return false;
}

} // namespace

bool identify_programming_file(const std::string& path, INSPECTED_KIND& kind, const FORMAT_ROW*& row,
                               std::string& message)
{
    if (!identify_file(path, kind, message)) {
        return false;
    }
    row = format_row_of_file(path);
    if (kind == INSPECTED_KIND::STREAM && row != nullptr && row->subject == FORMAT_SUBJECT::FLASH_IMAGE) {
        kind = INSPECTED_KIND::OTHER;
    }
    row = kind == INSPECTED_KIND::OTHER ? row : nullptr;
    return true;
}

bool inspect_programming_file(const std::string& path, const FORMAT_ROW& row, JSON& facts,
                              std::string& message)
{
    const auto file = FILE_SOURCE::open(path, message);
    FORMAT_FACTS found;
    if (!file) {
        return false;
    }
    if (!row.format->inspect(*file, found, message)) {
        message = path + ": " + message;
        return false;
    }
    facts = JSON{{"file", path}, {"kind", "programming file"}, {"bytes", file->size()}};
    for (const FORMAT_FACTS::FACT& fact : found.facts) {
        facts[key_of(fact.name)] = fact.value;
    }
    JSON ranges = JSON::array();
    for (const ADDRESS_RANGE& range : found.ranges) {
        ranges.push_back({{"start", hex_text(range.start)}, {"bytes", range.length}});
    }
    facts["ranges"] = std::move(ranges);
    JSON partitions = JSON::array();
    for (const IMAGE_REGION& region : found.regions) {
        partitions.push_back(region_json(region));
    }
    facts["partitions"] = std::move(partitions);
    return true;
}

SELF_CHECK check_file(const std::string& path, std::string& message)
{
    INSPECTED_KIND kind = INSPECTED_KIND::OTHER;
    const FORMAT_ROW* row = nullptr;
    if (!identify_programming_file(path, kind, row, message)) {
        return SELF_CHECK::UNREADABLE;
    }
    if (kind != INSPECTED_KIND::OTHER) {
        return verify_file(path, message) ? SELF_CHECK::SOUND : SELF_CHECK::DAMAGED;
    }
    if (row == nullptr || !carries_check_sums(row->type)) {
        message = path +
                  (row == nullptr ? " is no file that this program writes"
                                  : " carries no check sums, so that it cannot be verified alone") +
                  "; name the setup that it was made from behind --against.";
        return SELF_CHECK::IMPOSSIBLE;
    }
    const auto file = FILE_SOURCE::open(path, message);
    FORMAT_FACTS facts;
    if (!file) {
        return SELF_CHECK::UNREADABLE;
    }
    if (!row->format->inspect(*file, facts, message)) {
        message = path + ": " + message;
        return SELF_CHECK::DAMAGED;
    }
    return row->subject != FORMAT_SUBJECT::STREAM || check_stream_within(path, *row, *file, message)
               ? SELF_CHECK::SOUND
               : SELF_CHECK::DAMAGED;
}
