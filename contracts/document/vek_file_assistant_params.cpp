#include "msg_internal_error.h"
#include "parameter_call.h"
#include "value_rules.h"
#include "vek_file_assistant.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <span>

namespace
{

using ELEMENT = PGM_COMMON_XML_ELEMENT;
using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR*
find_attribute(const PGM_COMMON_XML_VEK_CMD_PARAM_DESCRIPTOR& parameter)
{
    if (parameter.attribute == PGM_COMMON_XML_TEXT) {
        return nullptr;
    }
    return &pgm_common_xml_vek_find_element(parameter.elements.back())
                ->attributes[static_cast<std::size_t>(parameter.attribute)];
}

/// Brings the values into the form that the document keeps; false when one of them cannot be held.
bool normalise(PARAMS& params)
{
    std::string expected;
    return std::all_of(params.begin(), params.end(), [&expected](auto& pair) {
        const auto* attribute = find_attribute(pgm_common_xml_vek_param(pair.first));
        return !attribute || normalise_value(*attribute, pair.second, expected);
    });
}

/// Whether the two inputs of an assignment, a bitstream and raw files, are both named.
bool mixes_inputs(const PARAMS& params)
{
    const auto names = [&params](PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param) {
        return std::any_of(params.begin(), params.end(),
                           [param](const auto& pair) { return pair.first == param; });
    };
    return names(VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID) && names(VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID);
}

/// Gives the assignment the inputs that the call names, in its order, when it names any. What was there
/// before and is named again stays the same element.
void replace_inputs(ELEMENT& assignment, const PARAMETER_CALL& call)
{
    std::vector<std::size_t> inputs;
    for (std::size_t pair = 0; pair < call.params().size(); ++pair) {
        if (call.is_reference(pair) && call.is_key(pair)) {
            inputs.push_back(pair);
        }
    }
    if (inputs.empty()) {
        return;
    }
    std::vector<std::unique_ptr<ELEMENT>> old_inputs;
    for (ELEMENT* child : assignment.get_childs(PGM_COMMON_XML_ENUM__INVALID__, true)) {
        old_inputs.push_back(pgm_common_xml_take_child(assignment, *child));
    }
    for (const std::size_t pair : inputs) {
        const PGM_COMMON_XML_ENUM kind = call.parameter(pair).elements.back();
        // Of several bitstreams the last one counts.
        if (kind == PGM_COMMON_XML_ENUM_BITSTREAM_ID && pair != inputs.back()) {
            continue;
        }
        const auto same = std::find_if(old_inputs.begin(), old_inputs.end(), [&](const auto& input) {
            return input && input->m_class_type == kind && input->read_string() == call.params()[pair].second;
        });
        if (same != old_inputs.end()) {
            assignment.group_child(same->get(), false, true);
            same->release();
        } else {
            call.owner(assignment, pair, true);
        }
    }
}

/// Whether the call would give a new element an id that another element of the document has.
bool takes_foreign_id(const PGM_COMMON_XML_VEK_VEK& document, const PARAMETER_CALL& call, ELEMENT* record)
{
    for (std::size_t pair = 0; pair < call.params().size(); ++pair) {
        const auto& [param, id] = call.params()[pair];
        if (param == VEK_CMD_PARAM_BITSTREAM_ID && VEK_FILE_ASSISTANT::get_raw_file_element(&document, id)) {
            return true;
        }
        if (param == VEK_CMD_PARAM_RAW_FILE_ID && VEK_FILE_ASSISTANT::get_bitstream_element(&document, id)) {
            return true;
        }
        if (param == VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID ||
            param == VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_ID) {
            const ELEMENT* same = VEK_FILE_ASSISTANT::get_partition_element(&document, id);
            if (same && (!record || call.owner(*record, pair, false) != same)) {
                return true;
            }
        }
    }
    return false;
}

/// A list whose secrets are wiped when it goes.
class WIPED_PARAMS
{
public:
    explicit WIPED_PARAMS(PARAMS params) : m_params(std::move(params)) {}
    ~WIPED_PARAMS()
    {
        for (auto& [param, text] : m_params) {
            const auto* attribute = find_attribute(pgm_common_xml_vek_param(param));
            if (attribute && attribute->type == PGM_XML_TYPE_SECRET) {
                pgm_common_xml_wipe(text);
            }
        }
    }
    WIPED_PARAMS(const WIPED_PARAMS&) = delete;
    WIPED_PARAMS& operator=(const WIPED_PARAMS&) = delete;
    PARAMS m_params;
};

bool has_inputs(const ELEMENT& assignment)
{
    return assignment.get_child_count(PGM_COMMON_XML_ENUM__INVALID__, true) != 0;
}

void remove_element(ELEMENT& element)
{
    VEK_ASSERT(element.get_parent() != nullptr);
    pgm_common_xml_take_child(*element.get_parent(), element);
}

/// Takes links out of every output.
void remove_links(const PGM_COMMON_XML_VEK_VEK& document, const PARAMETER_CALL& call)
{
    for (PGM_COMMON_XML_VEK_OUTPUT_FILE* output : VEK_FILE_ASSISTANT::get_output_file_elements(&document)) {
        for (std::size_t pair = 0; pair < call.params().size(); ++pair) {
            if (ELEMENT* link = call.owner(*output, pair, false)) {
                remove_element(*link);
            }
        }
    }
}

bool names_links_alone(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const PARAMETER_CALL& call)
{
    if (option != VEK_CMD_OPT_OUTPUT_FILE || call.params().empty()) {
        return false;
    }
    for (std::size_t pair = 0; pair < call.params().size(); ++pair) {
        if (!call.is_reference(pair) || !call.is_key(pair) || call.params()[pair].second.empty()) {
            return false;
        }
    }
    return true;
}

/// Whether another pair goes on below the element that this pair picks.
bool is_passed_through(const PARAMETER_CALL& call, std::size_t pair)
{
    const auto path = call.parameter(pair).elements;
    for (std::size_t other = 0; other < call.params().size(); ++other) {
        const auto longer = call.parameter(other).elements;
        if (longer.size() > path.size() && std::ranges::equal(path, longer.first(path.size()))) {
            return true;
        }
    }
    return false;
}

void remove_picked(ELEMENT& record, const PARAMETER_CALL& call)
{
    if (call.params().empty()) {
        remove_element(record);
        return;
    }
    std::vector<ELEMENT*> picked;
    for (std::size_t pair = 0; pair < call.params().size(); ++pair) {
        ELEMENT* element = is_passed_through(call, pair) ? nullptr : call.owner(record, pair, false);
        if (element && std::find(picked.begin(), picked.end(), element) == picked.end()) {
            picked.push_back(element);
        }
    }
    const bool removes_record = picked.size() == 1 && picked.front() == &record;
    const bool is_assignment = record.m_class_type == PGM_COMMON_XML_ENUM_ASSIGNMENT;
    for (ELEMENT* element : picked) {
        remove_element(*element);
    }
    if (!removes_record && is_assignment && !has_inputs(record)) {
        remove_element(record);
    }
}

/// The loader may be named, although its name is no key: then another one stays.
bool is_other_loader(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const ELEMENT& record, const PARAMS& params)
{
    return option == VEK_CMD_OPT_FLASH_LOADER && !params.empty() && !params.back().second.empty() &&
           params.back().second != record.read_string();
}

bool has_only_keys(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const PARAMETER_CALL& call)
{
    for (std::size_t pair = 0; pair < call.params().size(); ++pair) {
        if (!call.is_key(pair) && option != VEK_CMD_OPT_FLASH_LOADER) {
            return false;
        }
    }
    return true;
}

/// Collects all values of an element for a call that names its keys alone.
class VALUE_COLLECTOR
{
public:
    VALUE_COLLECTOR(const PARAMETER_CALL& call, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, PARAMS& values)
        : m_call(call), m_option(option), m_values(values)
    {
    }

    void collect(const ELEMENT& element, const std::vector<PGM_COMMON_XML_ENUM>& path)
    {
        const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor = *pgm_common_xml_vek_find_element(path.back());
        for (const PGM_COMMON_XML_CHILD_DESCRIPTOR& row : descriptor.children) {
            std::vector<PGM_COMMON_XML_ENUM> below = path;
            below.push_back(row.kind);
            for (const ELEMENT* child : element.get_childs(row.kind, true)) {
                if (pgm_common_xml_vek_find_element(row.kind)->key == PGM_COMMON_XML_NO_KEY ||
                    is_reference_kind(row.kind)) {
                    collect(*child, below);
                } else {
                    add(*child, below, pgm_common_xml_vek_find_element(row.kind)->key);
                }
            }
        }
        if (descriptor.text_type != PGM_XML_TYPE_NONE) {
            add(element, path, PGM_COMMON_XML_TEXT);
        }
        for (std::size_t index = 0; index < descriptor.attributes.size(); ++index) {
            if (descriptor.attributes[index].type != PGM_XML_TYPE_SECRET) {
                add(element, path, static_cast<int>(index));
            }
        }
    }

private:
    /// Keys that the call gives stand in the answer already.
    void add(const ELEMENT& element, const std::vector<PGM_COMMON_XML_ENUM>& path, int attribute)
    {
        for (std::uint32_t number = VEK_CMD_PARAM_INVALID + 1; number < VEK_CMD_PARAM_MAX; ++number) {
            const auto param = static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(number);
            const PGM_COMMON_XML_VEK_CMD_PARAM_DESCRIPTOR& row = pgm_common_xml_vek_param(param);
            if (row.option != m_option || row.attribute != attribute ||
                !std::ranges::equal(row.elements, path)) {
                continue;
            }
            const bool is_given = std::any_of(m_call.params().begin(), m_call.params().end(),
                                              [param](const auto& pair) { return pair.first == param; });
            if (!is_given) {
                m_values.emplace_back(param, pgm_common_xml_read(element, attribute));
            }
        }
    }

    const PARAMETER_CALL& m_call;
    PGM_COMMON_XML_VEK_CMD_OPT_ENUM m_option;
    PARAMS& m_values;
};

/// The pair whose element lies deepest; none for a call without pairs.
std::optional<std::size_t> deepest_pair(const PARAMETER_CALL& call)
{
    std::optional<std::size_t> deepest;
    for (std::size_t pair = 0; pair < call.params().size(); ++pair) {
        if (!deepest || call.parameter(pair).elements.size() > call.parameter(*deepest).elements.size()) {
            deepest = pair;
        }
    }
    return deepest;
}

bool names_values(const PARAMETER_CALL& call)
{
    for (std::size_t pair = 0; pair < call.params().size(); ++pair) {
        if (!call.is_key(pair) || (call.is_reference(pair) && call.params()[pair].second.empty())) {
            return true;
        }
    }
    return false;
}

} // namespace

VEK_FILE_ASSISTANT::PARAMS VEK_FILE_ASSISTANT::get(const PGM_COMMON_XML_VEK_VEK* document,
                                                   PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                                                   const PARAMS& params)
{
    VEK_ASSERT(document != nullptr);
    const PARAMETER_CALL call(option, params);
    if (!call.has_known_parameters() || !call.has_keys(true)) {
        return {};
    }
    // Nothing is created, so the document does not change.
    ELEMENT* record = call.record(const_cast<PGM_COMMON_XML_VEK_VEK&>(*document), false);
    if (!record) {
        return {};
    }
    PARAMS values;
    for (std::size_t pair = 0; pair < params.size(); ++pair) {
        for (const ELEMENT* owner : call.owners(*record, pair)) {
            values.emplace_back(params[pair].first,
                                pgm_common_xml_read(*owner, call.parameter(pair).attribute));
        }
    }
    if (names_values(call)) {
        return values;
    }
    const std::optional<std::size_t> pair = deepest_pair(call);
    const ELEMENT* target = pair ? call.owner(*record, *pair, false) : record;
    if (!target) {
        return {};
    }
    std::vector<PGM_COMMON_XML_ENUM> path{pgm_common_xml_vek_option(option).element};
    if (pair) {
        path.assign(call.parameter(*pair).elements.begin(), call.parameter(*pair).elements.end());
    }
    VALUE_COLLECTOR(call, option, values).collect(*target, path);
    return values;
}

bool VEK_FILE_ASSISTANT::set(PGM_COMMON_XML_VEK_VEK* document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                             const PARAMS& params)
{
    VEK_ASSERT(document != nullptr);
    if (!PARAMETER_CALL(option, params).has_known_parameters()) {
        return false;
    }
    WIPED_PARAMS values(params);
    const PARAMETER_CALL call(option, values.m_params);
    if (!normalise(values.m_params) || !call.has_keys(false) || mixes_inputs(values.m_params) ||
        takes_foreign_id(*document, call, call.record(*document, false))) {
        return false;
    }
    ELEMENT* record = call.record(*document, true);
    if (option == VEK_CMD_OPT_ASSIGNMENT) {
        replace_inputs(*record, call);
    }
    for (std::size_t pair = 0; pair < values.m_params.size(); ++pair) {
        ELEMENT* owner = call.owner(*record, pair, true);
        if (!call.is_key(pair)) {
            pgm_common_xml_write(*owner, call.parameter(pair).attribute, values.m_params[pair].second);
        }
    }
    return true;
}

bool VEK_FILE_ASSISTANT::remove(PGM_COMMON_XML_VEK_VEK* document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                                const PARAMS& params)
{
    VEK_ASSERT(document != nullptr);
    const PARAMETER_CALL call(option, params);
    if (!call.has_known_parameters() || !has_only_keys(option, call)) {
        return false;
    }
    if (names_links_alone(option, call)) {
        remove_links(*document, call);
        return true;
    }
    if (!call.has_keys(false)) {
        return false;
    }
    ELEMENT* record = call.record(*document, false);
    if (!record || is_other_loader(option, *record, params)) {
        return true;
    }
    remove_picked(*record, call);
    ELEMENT* group = call.group(*document, false);
    if (group != document && group->get_child_count(PGM_COMMON_XML_ENUM__INVALID__, true) == 0) {
        remove_element(*group);
    }
    return true;
}

bool VEK_FILE_ASSISTANT::modify_partition_id(PGM_COMMON_XML_VEK_VEK* document, const std::string& new_id,
                                             const std::string& old_id, const std::string& flash_device_id)
{
    PGM_COMMON_XML_VEK_PARTITION* partition = get_partition_element(document, flash_device_id, old_id);
    if (!partition || new_id.empty()) {
        return false;
    }
    if (new_id == old_id) {
        return true;
    }
    if (get_partition_element(document, new_id)) {
        return false;
    }
    partition->id = new_id;
    if (PGM_COMMON_XML_VEK_ASSIGNMENT* assignment = get_assignment_element(document, old_id)) {
        // An assignment that stands under the new id already names no partition of the document.
        if (PGM_COMMON_XML_VEK_ASSIGNMENT* orphan = get_assignment_element(document, new_id)) {
            remove_element(*orphan);
        }
        assignment->partition_id = new_id;
    }
    return true;
}
