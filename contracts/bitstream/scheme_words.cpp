#include "scheme_words.h"

#include <algorithm>
#include <array>

namespace
{

struct SCHEME_ROW {
    PGMIO_CONFIG_SCHEME scheme;
    const char* word;
    const char* other_word; ///< empty when there is none
};

constexpr std::array<SCHEME_ROW, 25> SCHEMES = {{
    {PGMIO_CONFIG_SCHEME_PS, "PS", ""},
    {PGMIO_CONFIG_SCHEME_PS_X2, "PSX2", "PS_X2"},
    {PGMIO_CONFIG_SCHEME_PS_X4, "PSX4", "PS_X4"},
    {PGMIO_CONFIG_SCHEME_PS_X8, "PSX8", "PS_X8"},
    {PGMIO_CONFIG_SCHEME_PPA, "PPA", ""},
    {PGMIO_CONFIG_SCHEME_PPS, "PPS", ""},
    {PGMIO_CONFIG_SCHEME_FPP, "FPP", ""},
    {PGMIO_CONFIG_SCHEME_AS, "ASX1", "AS"},
    {PGMIO_CONFIG_SCHEME_AP, "AP", ""},
    {PGMIO_CONFIG_SCHEME_AP_CASCADE, "AP_CASCADE", ""},
    {PGMIO_CONFIG_SCHEME_PP_X8, "PPX8", "PP_X8"},
    {PGMIO_CONFIG_SCHEME_PP_X16, "PPX16", "PP_X16"},
    {PGMIO_CONFIG_SCHEME_PP_X32, "PPX32", "PP_X32"},
    {PGMIO_CONFIG_SCHEME_AS_X4, "ASX4", "AS_X4"},
    {PGMIO_CONFIG_SCHEME_INTERNAL, "INTERNAL", ""},
    {PGMIO_CONFIG_SCHEME_SINGLE_IMAGE, "SINGLE_IMAGE", ""},
    {PGMIO_CONFIG_SCHEME_SINGLE_IMAGE_ERAM, "SINGLE_IMAGE_ERAM", ""},
    {PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE, "SINGLE_COMPRESSED_IMAGE", ""},
    {PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE_ERAM, "SINGLE_COMPRESSED_IMAGE_ERAM", ""},
    {PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES, "DUAL_COMPRESSED_IMAGES", ""},
    {PGMIO_CONFIG_SCHEME_LNKS_X8, "LNKSX8", "LNKS_X8"},
    {PGMIO_CONFIG_SCHEME_LNKS_X16, "LNKSX16", "LNKS_X16"},
    {PGMIO_CONFIG_SCHEME_LNKS_X32, "LNKSX32", "LNKS_X32"},
    {PGMIO_CONFIG_SCHEME_SDMMC_X4, "SDMMCX4", "SDMMC_X4"},
    {PGMIO_CONFIG_SCHEME_SDMMC_X8, "SDMMCX8", "SDMMC_X8"},
}};

std::string upper_case(std::string text)
{
    for (char& c : text)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return text;
}

} // namespace

bool scheme_from_word(const std::string& word, PGMIO_CONFIG_SCHEME& scheme)
{
    const std::string wanted = upper_case(word);
    const auto row = std::find_if(SCHEMES.begin(), SCHEMES.end(), [&](const SCHEME_ROW& candidate) {
        return !wanted.empty() && (wanted == candidate.word || wanted == candidate.other_word ||
                                   wanted == std::to_string(candidate.scheme));
    });
    if (row == SCHEMES.end())
        return false;
    scheme = row->scheme;
    return true;
}

std::string scheme_to_word(PGMIO_CONFIG_SCHEME scheme)
{
    const auto row = std::find_if(SCHEMES.begin(), SCHEMES.end(),
                                  [&](const SCHEME_ROW& candidate) { return candidate.scheme == scheme; });
    return row == SCHEMES.end() ? "any" : row->word;
}

std::vector<std::string> scheme_words()
{
    std::vector<std::string> words;
    for (const SCHEME_ROW& row : SCHEMES)
        words.emplace_back(row.word);
    return words;
}
