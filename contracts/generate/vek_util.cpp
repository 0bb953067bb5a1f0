#include "vek_util.h"

#include "bitstream_file.h"
#include "boot_tables.h"
#include "byte_source.h"
#include "check.h"
#include "family_traits.h"
#include "generate_job.h"
#include "msg_internal_error.h"
#include "partition_layout.h"
#include "partition_rules.h"
#include "pgm_device.h"
#include "precheck.h"
#include "setup_reader.h"
#include "setup_writer.h"
#include "vek_msgs.h"

#include <cerrno>
#include <sys/stat.h>

namespace
{

/// Bytes of firmware that the partition BOOT_INFO has room for.
std::uint64_t boot_firmware_limit()
{
    std::uint64_t limit = 0;
    for (const PARTITION_RULE& rule : partition_rule_table()) {
        std::uint64_t start = 0;
        std::uint64_t end = 0;
        if (rule.content == PARTITION_CONTENT_BOOT_INFO && parse_address(rule.start, start) &&
            parse_address(rule.end, end)) {
            limit = end - start + 1 - BOOT_INFO_HEADER_SIZE;
        }
    }
    return limit;
}

/// Whether every address of the partitions can be shown as a number. A window has no place for one that
/// cannot, so it does not open such a setup; the check on the command line tells more about them.
bool addresses_are_numbers(const PGM_COMMON_XML_VEK_VEK& document, std::string& message)
{
    for (PGM_COMMON_XML_ELEMENT* element : document.get_childs(PGM_COMMON_XML_ENUM_PARTITION, false)) {
        const auto& partition = *static_cast<const PGM_COMMON_XML_VEK_PARTITION*>(element);
        for (const bool at_start : {true, false}) {
            const std::string& text = at_start ? partition.s_addr : partition.e_addr;
            std::uint64_t address = 0;
            if (text != AUTO_ADDRESS && !parse_address(text, address)) {
                message = std::string("The ") + (at_start ? "start" : "end") + " address \"" + text +
                          "\" of the partition \"" + partition.id +
                          "\" is no hexadecimal number; write \"auto\" or a number such as 0x00100000.";
                return false;
            }
        }
    }
    return true;
}

} // namespace

bool VEK_UTIL::parse(PGM_COMMON_XML_VEK_VEK** document, const std::string& path)
{
    VEK_ASSERT(document != nullptr);
    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> parsed;
    std::string message;
    if (read_setup_file(path, parsed, message) && addresses_are_numbers(*parsed, message)) {
        *document = parsed.release();
        return true;
    }
    struct stat facts {
    };
    std::string open_message;
    if (stat(path.c_str(), &facts) != 0 && errno == ENOENT) {
        vek_report(MSG_VEK::E::FILE_MISSING(path));
    } else if (!FILE_SOURCE::open(path, open_message)) {
        vek_report(MSG_VEK::E::FILE_IO_ERROR(path + " (" + open_message + ")"));
    } else {
        vek_report(MSG_VEK::E::CORRUPTED_FILE_WITH_REASON(path, message));
    }
    return false;
}

bool VEK_UTIL::save(const PGM_COMMON_XML_VEK_VEK* document, const std::string& path)
{
    VEK_ASSERT(document != nullptr);
    std::string message;
    if (!write_setup_file(*document, path, message)) {
        vek_report(MSG_VEK::E::FILE_IO_ERROR(path + " (" + message + ")"));
        return false;
    }
    vek_report(MSG_VEK::I::VEK_SUCCESSFULLY_SAVED(path));
    return true;
}

bool VEK_UTIL::check(const PGM_COMMON_XML_VEK_VEK* document, bool& can_save, bool& can_generate,
                     std::string& message, bool& has_warning, bool include_files)
{
    VEK_ASSERT(document != nullptr);
    FINDINGS findings;
    check_setup(*document, include_files, "", findings);
    can_save = findings.can_save();
    can_generate = findings.can_generate();
    has_warning = findings.has_warning();
    message = findings.message();
    return true;
}

bool VEK_UTIL::generate(PGM_COMMON_XML_VEK_VEK* document)
{
    VEK_ASSERT(document != nullptr);
    std::vector<WRITTEN_FILE> written;
    return generate_document(*document, GENERATE_OPTIONS(), written);
}

DEV_FAMILY_ENUM VEK_UTIL::get_family(const PGM_COMMON_XML_VEK_VEK* document)
{
    VEK_ASSERT(document != nullptr);
    return find_setup_facts(SETUP_VIEW(*document)).family;
}

void VEK_UTIL::get_family_pcf_info(DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM device, unsigned& mode_mask_a,
                                   unsigned& mode_mask_b, unsigned& output_file_mask)
{
    ::get_family_pcf_info(family, device, mode_mask_a, mode_mask_b, output_file_mask);
}

bool VEK_UTIL::precheck_input_file(const FIO_PATH& path, const PGM_DEVICE** device, std::string& device_name,
                                   std::string& message, bool must_be_bitstream)
{
    return precheck_bitstream_file(path.fullpath(), must_be_bitstream, device, device_name, message);
}

bool VEK_UTIL::partition_has_page(const std::string& name, PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family,
                                  DEV_DEVICE_ENUM, bool, bool, FIO_FILE_TYPE)
{
    return partition_rule_has_page(name, mode, family);
}

bool VEK_UTIL::partition_is_editable(const std::string& name, PGMIO_CONFIG_SCHEME mode,
                                     DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM, bool, bool, FIO_FILE_TYPE)
{
    return partition_rule_is_editable(name, mode, family);
}

bool VEK_UTIL::partition_is_removable(const std::string& name, PGMIO_CONFIG_SCHEME mode,
                                      DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM, bool, bool, FIO_FILE_TYPE)
{
    return partition_rule_is_removable(name, mode, family);
}

std::vector<VEK_UTIL_PARTITION_INFO>
VEK_UTIL::get_reserved_partitions(PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM device,
                                  bool two_bitstreams, bool has_puf, FIO_FILE_TYPE)
{
    return reserved_partitions(mode, family, device, two_bitstreams, has_puf);
}

bool VEK_UTIL::check_boot_info(const std::string& path, std::string& message)
{
    const PGM_DEVICE* device = nullptr;
    std::string name;
    if (!precheck_bitstream_file(path, true, &device, name, message)) {
        return false;
    }
    const auto file = BITSTREAM_FILE::open(path, message);
    if (!file) {
        return false;
    }
    const auto firmware = file->section(SECTION_FIRMWARE);
    if (!dev_family_is_secure(device->family)) {
        message = path + " is for the family " + dstr_get_user_string(device->family) +
                  ", which has no boot information; choose a bitstream of a secure family.";
    } else if (!firmware || firmware->size() == 0) {
        message = path + " brings no firmware for the boot information; choose a bitstream with firmware.";
    } else if (firmware->size() > boot_firmware_limit()) {
        message = path + " brings " + std::to_string(firmware->size()) +
                  " bytes of firmware, and the boot information has room for " +
                  std::to_string(boot_firmware_limit()) + "; choose another bitstream.";
    } else {
        return true;
    }
    return false;
}
