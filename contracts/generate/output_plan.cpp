#include "output_plan.h"

#include "finding.h"
#include "fio_path.h"
#include "input_security.h"
#include "partition_layout.h"
#include "vek_db.h"
#include "vek_file_assistant.h"

#include <algorithm>
#include <charconv>

namespace
{

/// The group that an output stands in, as its flags say.
VEK_FILE_TYPE group_of(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output)
{
    if (VEK_FILE_ASSISTANT::convert_string_to_bool(output.cvp)) {
        return VEK_CVP_GROUP_FILE_TYPE;
    }
    return VEK_FILE_ASSISTANT::convert_string_to_bool(output.hps) ? VEK_HPS_GROUP_FILE_TYPE
                                                                  : VEK_INVALID_FILE_TYPE;
}

std::string extension_of(VEK_FILE_TYPE type)
{
    return fio_get_extension_string(VEK_DB::get_fio_ext_enum(type));
}

FORMAT_PART part_of(VEK_FILE_TYPE type)
{
    const FORMAT_ROW* row = find_format_row(type);
    return row != nullptr ? row->part : FORMAT_PART::ALL;
}

/// The word of the document as the file shows it; empty for a text that is no voltage.
std::string voltage_of(const std::string& word)
{
    struct ROW {
        PGM_COMMON_XML_ENUM word;
        const char* volts;
    };
    constexpr ROW ROWS[] = {{PGM_COMMON_XML_ENUM_1_5V, "1.5"},
                            {PGM_COMMON_XML_ENUM_1_8V, "1.8"},
                            {PGM_COMMON_XML_ENUM_2_5V, "2.5"},
                            {PGM_COMMON_XML_ENUM_3_3V, "3.3"},
                            {PGM_COMMON_XML_ENUM_5_0V, "5.0"}};
    const PGM_COMMON_XML_ENUM value = VEK_FILE_ASSISTANT::convert_string_to_xml_enum(word);
    const auto row =
        std::find_if(std::begin(ROWS), std::end(ROWS), [value](const ROW& one) { return one.word == value; });
    return row == std::end(ROWS) ? "" : row->volts;
}

JTAG_OPERATION operation_of(const std::string& word)
{
    const PGM_COMMON_XML_ENUM value = VEK_FILE_ASSISTANT::convert_string_to_xml_enum(word);
    return value == PGM_COMMON_XML_ENUM_V    ? JTAG_OPERATION::VERIFY
           : value == PGM_COMMON_XML_ENUM_PB ? JTAG_OPERATION::BLANK_CHECK_AND_PROGRAM
                                             : JTAG_OPERATION::PROGRAM;
}

void finish(OUTPUT_PLAN& plan, const std::string& directory_override)
{
    plan.directory = absolute_path(directory_override.empty() ? plan.output->directory : directory_override);
    plan.path = plan.directory + (plan.directory.ends_with('/') ? "" : "/") + plan.file_name;
}

OUTPUT_PLAN primary_plan(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output, VEK_FILE_TYPE type)
{
    OUTPUT_PLAN plan;
    plan.output = &output;
    plan.type = type;
    plan.part = part_of(type);
    plan.label = output_label(output);
    plan.name = output.name;
    plan.options = output.file_options.empty() ? nullptr : output.file_options.front();
    const VEK_FILE_TYPE group = group_of(output);
    plan.file_name = output.name + VEK_DB::get_file_name_suffix(type) +
                     (group == VEK_INVALID_FILE_TYPE ? "" : VEK_DB::get_child_file_name_suffix(group)) +
                     extension_of(type);
    return plan;
}

OUTPUT_PLAN secondary_plan(const OUTPUT_PLAN& parent, const PGM_COMMON_XML_VEK_SECONDARY_FILE& secondary,
                           VEK_FILE_TYPE type)
{
    OUTPUT_PLAN plan;
    plan.output = parent.output;
    plan.secondary = &secondary;
    plan.type = type;
    plan.part = part_of(type) != FORMAT_PART::ALL ? part_of(type) : parent.part;
    plan.label = parent.label + " / " + element_label("SECONDARY_FILE", secondary.type);
    plan.name = secondary.name;
    plan.options = secondary.file_options.empty() ? nullptr : secondary.file_options.front();
    plan.file_name = secondary.name + VEK_DB::get_file_name_suffix(parent.type) +
                     VEK_DB::get_child_file_name_suffix(parent.type) + extension_of(type);
    return plan;
}

} // namespace

std::vector<OUTPUT_PLAN> plan_outputs(const SETUP_VIEW& setup, const std::string& directory_override)
{
    std::vector<OUTPUT_PLAN> plans;
    for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : setup.output_files()) {
        const VEK_FILE_TYPE type = output_type_of(output->type);
        if (type == VEK_INVALID_FILE_TYPE) {
            continue;
        }
        plans.push_back(primary_plan(*output, type));
        const OUTPUT_PLAN parent = plans.back();
        for (const PGM_COMMON_XML_VEK_SECONDARY_FILE* secondary : output->secondary_file) {
            const VEK_FILE_TYPE secondary_type = output_type_of(secondary->type);
            if (secondary_type != VEK_INVALID_FILE_TYPE) {
                plans.push_back(secondary_plan(parent, *secondary, secondary_type));
            }
        }
    }
    for (OUTPUT_PLAN& plan : plans) {
        finish(plan, directory_override);
    }
    return plans;
}

std::vector<OUTPUT_PLAN> plan_files(const SETUP_VIEW& setup, const std::string& directory_override)
{
    std::vector<OUTPUT_PLAN> plans = plan_outputs(setup, directory_override);
    for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : setup.bitstreams().all()) {
        for (const PGM_COMMON_XML_VEK_PATH* path : bitstream->path) {
            if (path->ekp_file.empty() || !VEK_FILE_ASSISTANT::convert_string_to_bool(path->encryption)) {
                continue;
            }
            OUTPUT_PLAN plan;
            const FIO_PATH file(absolute_path(path->ekp_file));
            plan.key_of = path;
            plan.type = VEK_EKP_FILE_TYPE;
            plan.label = path_label(*bitstream, *path);
            plan.name = file.filename();
            plan.file_name = plan.name;
            plan.directory =
                directory_override.empty() ? file.full_directory() : absolute_path(directory_override);
            plan.path = plan.directory + (plan.directory.ends_with('/') ? "" : "/") + plan.file_name;
            plans.push_back(plan);
        }
    }
    return plans;
}

std::string output_label(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output)
{
    return element_label("OUTPUT_FILE", output.type);
}

bool parse_frequency(const std::string& text, std::uint64_t& frequency)
{
    struct UNIT {
        const char* name;
        unsigned decimals;
    };
    constexpr UNIT UNITS[] = {{"hz", 0}, {"khz", 3}, {"mhz", 6}};
    const char* const end = text.data() + text.size();
    std::uint64_t whole = 0;
    const auto number = std::from_chars(text.data(), end, whole);
    if (number.ec != std::errc() || whole > 1'000'000'000) {
        return false;
    }
    const char* at = number.ptr;
    std::string decimals;
    if (at != end && *at == '.') {
        for (++at; at != end && *at >= '0' && *at <= '9'; ++at) {
            decimals += *at;
        }
        decimals.erase(decimals.find_last_not_of('0') + 1);
    }
    std::string name;
    for (at = std::find_if(at, end, [](char c) { return c != ' '; }); at != end; ++at) {
        name += *at >= 'A' && *at <= 'Z' ? static_cast<char>(*at - 'A' + 'a') : *at;
    }
    for (const UNIT& unit : UNITS) {
        if (name == unit.name && decimals.size() <= unit.decimals) {
            frequency = whole;
            for (unsigned i = 0; i < unit.decimals; ++i) {
                frequency =
                    frequency * 10 + (i < decimals.size() ? static_cast<unsigned>(decimals[i] - '0') : 0U);
            }
            return frequency != 0;
        }
    }
    return false;
}

void apply_file_options(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request)
{
    if (plan.options == nullptr) {
        return;
    }
    std::uint64_t address = 0;
    if (parse_address(plan.options->s_addr, address)) {
        request.start_address = static_cast<std::uint32_t>(address);
    }
    request.count_down =
        VEK_FILE_ASSISTANT::convert_string_to_xml_enum(plan.options->direction) == PGM_COMMON_XML_ENUM_DOWN;
    request.bitswap = VEK_FILE_ASSISTANT::convert_string_to_bool(plan.options->bitswap);
    parse_frequency(plan.options->frequency, request.frequency);
    request.voltage = voltage_of(plan.options->voltage);
    request.operation = operation_of(plan.options->operation);
    request.use_relative = VEK_FILE_ASSISTANT::convert_string_to_bool(plan.options->use_relative);
}
