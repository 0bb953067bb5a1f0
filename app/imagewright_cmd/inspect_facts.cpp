#include "inspect_facts.h"

#include "scheme_words.h"

namespace
{

std::string digest_text(std::span<const std::uint8_t> digest)
{
    constexpr std::string_view DIGITS = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : digest) {
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 15];
    }
    return text;
}

void add_scheme(JSON& document, const std::optional<std::uint32_t>& scheme)
{
    document["scheme"] =
        scheme_to_word(scheme ? static_cast<PGMIO_CONFIG_SCHEME>(*scheme) : PGMIO_CONFIG_SCHEME_ILLEGAL);
}

void add_option_block(JSON& document, std::uint32_t option_word, const DSET_OTI_DEV_OPTIONS_INFO& block)
{
    if (option_word == 0) {
        return;
    }
    document["on_chip_options"] = JSON{{"power_on_scheme", block.power_on_scheme},
                                       {"user_ios_weak_pullup", block.user_ios_weak_pullup},
                                       {"config_from_cfm0_only", !block.not_cfm0_only},
                                       {"isp_source", block.isp_source},
                                       {"jtag_security", block.jtag_security},
                                       {"verify_protect", block.verify_protect},
                                       {"encrypted_pof_only", block.encrypted_pof_only},
                                       {"watchdog_enabled", block.watchdog_enabled},
                                       {"watchdog_value", block.watchdog_value},
                                       {"spi_mode", block.spi_mode},
                                       {"fallback_enabled", block.fallback_enabled},
                                       {"fallback_address", hex_text(block.fallback_address)},
                                       {"ufm_source", block.ufm_source}};
}

JSON regions_json(const std::vector<BITSTREAM_REGION>& regions)
{
    JSON list = JSON::array();
    for (const BITSTREAM_REGION& region : regions) {
        list.push_back(
            {{"name", region.name}, {"offset", hex_text(region.offset)}, {"bytes", region.length}});
    }
    return list;
}

bool is_plain_list(const JSON& value)
{
    if (!value.is_array()) {
        return false;
    }
    for (const JSON& entry : value) {
        if (entry.is_structured()) {
            return false;
        }
    }
    return true;
}

std::string plain_text(const JSON& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

void append_text(const JSON& document, const std::string& indent, std::string& text)
{
    for (const auto& [name, value] : document.items()) {
        if (is_plain_list(value)) {
            std::string joined;
            for (const JSON& entry : value) {
                joined += (joined.empty() ? "" : ", ") + plain_text(entry);
            }
            text += indent + name + ": " + (joined.empty() ? "none" : joined) + '\n';
        } else if (value.is_array()) {
            for (std::size_t index = 0; index < value.size(); ++index) {
                text += indent + name + " " + std::to_string(index + 1) + ":\n";
                append_text(value[index], indent + "  ", text);
            }
        } else if (value.is_object()) {
            text += indent + name + ":\n";
            append_text(value, indent + "  ", text);
        } else {
            text += indent + name + ": " + plain_text(value) + '\n';
        }
    }
}

/// What protects an image; the key itself is in no file.
void add_protection(JSON& document, const STREAM_IMAGE_FACTS& image)
{
    if (image.key) {
        JSON fuses = JSON::object();
        for (std::size_t option = 0; option < FUSE_OPTION_COUNT; ++option) {
            if (image.key->fuse_options[option] != 0) {
                fuses[fuse_option_name(static_cast<FUSE_OPTION>(option))] = image.key->fuse_options[option];
            }
        }
        document["encryption"] = JSON{{"key_id", key_id_text(image.key->id)},
                                      {"key_bits", image.key->key_bits},
                                      {"key_place", key_place_name(image.key->place)},
                                      {"to_be_completed", image.key->prepared},
                                      {"during_reconfiguration", image.key->during_reconfiguration},
                                      {"fuse_options", fuses}};
    }
    if (image.signer) {
        document["signer"] = JSON{{"curve", ecdsa_curve_name(image.signer->curve)},
                                  {"public_key", digest_text(image.signer->point)}};
        if (image.root) {
            document["root"] = JSON{{"curve", ecdsa_curve_name(image.root->curve)},
                                    {"public_key", digest_text(image.root->point)}};
        }
    }
}

} // namespace

JSON bitstream_facts_json(const std::string& path, const BITSTREAM_FACTS& facts)
{
    JSON document{{"file", path},
                  {"kind", facts.kind == BITSTREAM_KIND::SOF ? "bitstream" : "partial bitstream"},
                  {"version", facts.version},
                  {"bytes", facts.size},
                  {"device", facts.device.name},
                  {"device_known", facts.device_known},
                  {"idcode", hex_text(facts.device.idcode)}};
    add_scheme(document, facts.scheme);
    document["options"] = facts.options.empty() ? JSON::object() : JSON(facts.options);
    add_option_block(document, facts.option_word, facts.option_block);
    if (!facts.regions.empty()) {
        document["regions"] = regions_json(facts.regions);
    }
    JSON sections = JSON::array();
    for (const BITSTREAM_SECTION& section : facts.sections) {
        sections.push_back({{"tag", std::string(section.tag.begin(), section.tag.end())},
                            {"content", section_description(section.tag)},
                            {"offset", hex_text(section.offset)},
                            {"bytes", section.length},
                            {"crc32", hex_text(section.crc)}});
    }
    document["sections"] = std::move(sections);
    document["sha256"] = facts.digest;
    return document;
}

JSON stream_facts_json(const std::string& path, const STREAM_FACTS& facts)
{
    JSON images = JSON::array();
    for (const STREAM_IMAGE_FACTS& image : facts.images) {
        JSON entry{{"device", image.device.name},
                   {"idcode", hex_text(image.device.idcode)},
                   {"partial", image.partial},
                   {"decompression_during_pr", image.decompression_during_pr},
                   {"replaces_factory", image.replaces_factory},
                   {"application", image.application},
                   {"offset", hex_text(image.offset)}};
        add_scheme(entry, image.scheme);
        entry["options"] = image.options.empty() ? JSON::object() : JSON(image.options);
        add_option_block(entry, image.option_word, image.option_block);
        add_protection(entry, image);
        if (image.update) {
            entry["update"] = JSON{{"version", image.update->version},
                                   {"replaces_boot_info", image.update->replaces_boot_info}};
        }
        if (!image.regions.empty()) {
            entry["regions"] = regions_json(image.regions);
        }
        JSON parts = JSON::array();
        for (std::size_t part = 0; part < STREAM_PART_COUNT; ++part) {
            if (image.part_length[part] != 0) {
                parts.push_back({{"part", stream_part_name(static_cast<STREAM_PART>(part))},
                                 {"bytes", image.part_length[part]},
                                 {"stored_bytes", image.stored_length[part]}});
            }
        }
        entry["parts"] = std::move(parts);
        JSON packets = JSON::object();
        for (std::size_t method = 0; method < STREAM_METHOD_COUNT; ++method) {
            packets[stream_method_name(static_cast<STREAM_METHOD>(method))] = image.packets_by_method[method];
        }
        entry["packets"] = std::move(packets);
        images.push_back(std::move(entry));
    }
    return JSON{{"file", path},
                {"kind", "configuration stream"},
                {"version", facts.version},
                {"bytes", facts.size},
                {"packets", facts.packets},
                {"images", std::move(images)},
                {"sha256", digest_text(facts.digest)}};
}

std::string facts_text(const JSON& document)
{
    std::string text;
    append_text(document, "", text);
    return text;
}
