#include "scheme_words.h"

#include "vek_db.h"
#include "vek_file_assistant.h"

#include <array>
#include <cctype>

namespace
{

struct ROW {
    PGMIO_CONFIG_SCHEME scheme;
    std::string word;
};

const std::vector<ROW>& rows()
{
    static const std::vector<ROW> table = [] {
        std::vector<ROW> result;
        for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
            result.push_back(
                {mode, VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(mode))});
        }
        // What a bitstream of the on-chip flash family is made for; the document has one word for all of
        // them.
        result.push_back({PGMIO_CONFIG_SCHEME_SINGLE_IMAGE, "SINGLE"});
        result.push_back({PGMIO_CONFIG_SCHEME_SINGLE_IMAGE_ERAM, "SINGLE_ERAM"});
        result.push_back({PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE, "SINGLE_COMPRESSED"});
        result.push_back({PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE_ERAM, "SINGLE_COMPRESSED_ERAM"});
        result.push_back({PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES, "DUAL_COMPRESSED"});
        return result;
    }();
    return table;
}

bool equal_ignoring_case(const std::string& left, const std::string& right)
{
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(),
                      [](unsigned char a, unsigned char b) { return std::toupper(a) == std::toupper(b); });
}

} // namespace

std::string scheme_word(PGMIO_CONFIG_SCHEME scheme)
{
    for (const ROW& row : rows()) {
        if (row.scheme == scheme) {
            return row.word;
        }
    }
    return std::to_string(scheme);
}

bool find_scheme(const std::string& word, PGMIO_CONFIG_SCHEME& scheme)
{
    for (const ROW& row : rows()) {
        if (equal_ignoring_case(row.word, word)) {
            scheme = row.scheme;
            return true;
        }
    }
    return false;
}

std::vector<std::string> scheme_words()
{
    std::vector<std::string> words;
    for (const ROW& row : rows()) {
        words.push_back(row.word);
    }
    return words;
}
