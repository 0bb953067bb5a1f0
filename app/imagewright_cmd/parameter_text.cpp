#include "parameter_text.h"

#include "parameter_call.h"
#include "value_rules.h"

#include <algorithm>
#include <numeric>

namespace
{

using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

std::vector<std::string> option_names()
{
    return {PGM_COMMON_XML_VEK_CMD_OPT.begin() + 1, PGM_COMMON_XML_VEK_CMD_OPT.end()};
}

std::vector<std::string> param_names(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option)
{
    std::vector<std::string> names;
    for (std::uint32_t value = VEK_CMD_PARAM_INVALID + 1; value < VEK_CMD_PARAM_MAX; ++value) {
        if (pgm_common_xml_vek_cmd_opt_of(static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(value)) == option) {
            names.emplace_back(PGM_COMMON_XML_VEK_CMD_PARAM[value]);
        }
    }
    return names;
}

/// Letters to be inserted, removed or replaced to make one word of the other.
std::size_t distance(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, changed});
        }
    }
    return row[b.size()];
}

/// How far a word is from a name or from one of its tails: who forgets the element in front means the rest.
std::size_t distance_to_tails(const std::string& word, const std::string& name)
{
    std::size_t nearest = distance(word, name);
    for (std::size_t at = name.find('_'); at != std::string::npos; at = name.find('_', at + 1)) {
        nearest = std::min(nearest, distance(word, name.substr(at + 1)));
    }
    return nearest;
}

/// Cuts "NAME=VALUE".
bool cut(const std::string& word, bool value_needed, std::string& name, std::string& value,
         std::string& message)
{
    const std::size_t equal = word.find('=');
    name = word.substr(0, equal);
    value = equal == std::string::npos ? "" : word.substr(equal + 1);
    if (name.empty() || (value_needed && equal == std::string::npos)) {
        message = "\"" + word + "\" is no parameter with a value; write PARAM=VALUE.";
        return false;
    }
    return true;
}

const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR* attribute_of(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    const PGM_COMMON_XML_VEK_CMD_PARAM_DESCRIPTOR& row = pgm_common_xml_vek_param(param);
    return row.attribute == PGM_COMMON_XML_TEXT ? nullptr
                                                : &pgm_common_xml_vek_find_element(row.elements.back())
                                                       ->attributes[static_cast<std::size_t>(row.attribute)];
}

/// The parameter that is the key of the last of some elements; INVALID where it has none.
PGM_COMMON_XML_VEK_CMD_PARAM_ENUM key_param(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                                            std::span<const PGM_COMMON_XML_ENUM> elements)
{
    for (std::uint32_t value = VEK_CMD_PARAM_INVALID + 1; value < VEK_CMD_PARAM_MAX; ++value) {
        const auto param = static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(value);
        const PGM_COMMON_XML_VEK_CMD_PARAM_DESCRIPTOR& row = pgm_common_xml_vek_param(param);
        if (row.option == option && std::ranges::equal(row.elements, elements) &&
            row.attribute == pgm_common_xml_vek_find_element(elements.back())->key) {
            return param;
        }
    }
    return VEK_CMD_PARAM_INVALID;
}

bool is_given(const PARAMS& params, PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return std::any_of(params.begin(), params.end(),
                       [param](const auto& pair) { return pair.first == param && !pair.second.empty(); });
}

std::string missing_key(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, PGM_COMMON_XML_VEK_CMD_PARAM_ENUM key)
{
    return std::string(PGM_COMMON_XML_VEK_CMD_OPT[option]) + " needs " + PGM_COMMON_XML_VEK_CMD_PARAM[key] +
           "=VALUE to say which one is meant.";
}

/// The first key that is not there among those that the parameters pass through.
std::string explain_keys(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const PARAMS& params, bool stores)
{
    const auto is_link = [](const auto& pair) {
        return pair.first == VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID ||
               pair.first == VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID;
    };
    if (!stores && !params.empty() && std::all_of(params.begin(), params.end(), is_link)) {
        return ""; // taken out of every output
    }
    const PGM_COMMON_XML_ENUM element = pgm_common_xml_vek_option(option).element;
    const PGM_COMMON_XML_VEK_CMD_PARAM_ENUM own = key_param(option, {&element, 1});
    // The flash loader is its own key, and there is one at most.
    if (own != VEK_CMD_PARAM_INVALID && !is_given(params, own) &&
        (stores || option != VEK_CMD_OPT_FLASH_LOADER)) {
        return missing_key(option, own);
    }
    for (const auto& [param, value] : params) {
        const auto elements = pgm_common_xml_vek_param(param).elements;
        for (std::size_t depth = 1; depth <= elements.size(); ++depth) {
            const PGM_COMMON_XML_VEK_CMD_PARAM_ENUM key = key_param(option, elements.first(depth));
            if (key != VEK_CMD_PARAM_INVALID && !is_given(params, key) &&
                (stores || !is_reference_kind(elements[depth - 1]))) {
                return missing_key(option, key);
            }
        }
    }
    return "";
}

} // namespace

std::vector<std::string> nearest_names(const std::string& word, const std::vector<std::string>& names)
{
    std::size_t nearest = std::max<std::size_t>(2, word.size() / 2);
    std::vector<std::string> found;
    for (const std::string& name : names) {
        const std::size_t apart = distance_to_tails(word, name);
        if (apart < nearest) {
            nearest = apart;
            found.clear();
        }
        if (apart == nearest) {
            found.push_back(name);
        }
    }
    // Of names that are equally near, the shorter ones have less that the word does not say.
    std::stable_sort(found.begin(), found.end(),
                     [](const std::string& a, const std::string& b) { return a.size() < b.size(); });
    found.resize(std::min<std::size_t>(found.size(), 3));
    return found;
}

std::string suggestion(const std::vector<std::string>& names)
{
    std::vector<std::string> quoted;
    for (const std::string& name : names) {
        quoted.push_back("\"" + name + "\"");
    }
    return names.empty() ? "" : " Did you mean " + join_words(quoted) + "?";
}

bool option_from_word(const std::string& word, PGM_COMMON_XML_VEK_CMD_OPT_ENUM& option, std::string& message)
{
    option = pgm_common_xml_find_vek_cmd_opt(word);
    if (option != VEK_CMD_OPT_INVALID) {
        return true;
    }
    message = "\"" + word + "\" is no option of a setup; use " + join_words(option_names()) + "." +
              suggestion(nearest_names(word, option_names()));
    return false;
}

bool param_from_word(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const std::string& word, bool value_needed,
                     PARAMS::value_type& pair, std::string& message)
{
    std::string name;
    if (!cut(word, value_needed, name, pair.second, message)) {
        return false;
    }
    pair.first = pgm_common_xml_find_vek_cmd_param(option, name);
    if (pair.first != VEK_CMD_PARAM_INVALID) {
        return true;
    }
    message = "\"" + name + "\" is no parameter of " + PGM_COMMON_XML_VEK_CMD_OPT[option] +
              "; imagewright-cmd list params shows all." +
              suggestion(nearest_names(name, param_names(option)));
    return false;
}

bool param_from_qualified_word(const std::string& word, PARAMS::value_type& pair, std::string& message)
{
    std::string name;
    if (!cut(word, true, name, pair.second, message)) {
        return false;
    }
    const std::size_t point = name.find('.');
    if (point != std::string::npos) {
        PGM_COMMON_XML_VEK_CMD_OPT_ENUM option = VEK_CMD_OPT_INVALID;
        return option_from_word(name.substr(0, point), option, message) &&
               param_from_word(option, word.substr(point + 1), true, pair, message);
    }
    std::vector<std::string> qualified;
    std::vector<std::string> all;
    for (std::uint32_t value = VEK_CMD_PARAM_INVALID + 1; value < VEK_CMD_PARAM_MAX; ++value) {
        const auto param = static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(value);
        all.emplace_back(PGM_COMMON_XML_VEK_CMD_PARAM[value]);
        if (name == PGM_COMMON_XML_VEK_CMD_PARAM[value]) {
            pair.first = param;
            qualified.push_back(
                std::string(PGM_COMMON_XML_VEK_CMD_OPT[pgm_common_xml_vek_cmd_opt_of(param)]) + "." + name);
        }
    }
    if (qualified.size() == 1) {
        return true;
    }
    message =
        qualified.empty()
            ? "\"" + name + "\" is no parameter of a setup; imagewright-cmd list params " + "shows all." +
                  suggestion(nearest_names(name, all))
            : "\"" + name + "\" is a parameter of several options; write " + join_words(qualified) + ".";
    return false;
}

std::string explain_refusal(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const PARAMS& params, bool stores)
{
    if (const std::string keys = explain_keys(option, params, stores); !keys.empty()) {
        return keys;
    }
    bool has_bitstream = false;
    bool has_raw_file = false;
    for (const auto& [param, value] : params) {
        const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR* attribute = attribute_of(param);
        std::string expected;
        std::string text = value;
        if (attribute != nullptr && attribute->type == PGM_XML_TYPE_SECRET) {
            return std::string(PGM_COMMON_XML_VEK_CMD_PARAM[param]) +
                   " is a secret, which no setup keeps and no command line should show; the window asks for "
                   "it.";
        }
        if (stores && attribute != nullptr && !normalise_value(*attribute, text, expected)) {
            return "The value \"" + value + "\" of " + PGM_COMMON_XML_VEK_CMD_PARAM[param] +
                   " is not possible; expected is " + expected + ".";
        }
        has_bitstream = has_bitstream || param == VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID;
        has_raw_file = has_raw_file || param == VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID;
    }
    return has_bitstream && has_raw_file
               ? "An assignment takes a bitstream or raw files, not both; name one kind."
               : "";
}

bool set_values(PGM_COMMON_XML_VEK_VEK& document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                const PARAMS& params, std::string& message)
{
    message = explain_refusal(option, params, true);
    if (!message.empty()) {
        return false;
    }
    if (!VEK_FILE_ASSISTANT::set(&document, option, params)) {
        message = std::string("The values of ") + PGM_COMMON_XML_VEK_CMD_OPT[option] +
                  " do not go together, or the id belongs to another element.";
        return false;
    }
    return true;
}
