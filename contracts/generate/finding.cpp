#include "finding.h"

#include "msg_internal_error.h"

#include <algorithm>

namespace
{

constexpr FINDING_ROW ROWS[] = {
    {FINDING_MODE_MISSING, "mode-missing", FINDING_FORBIDS_SAVE,
     "The setup names no configuration mode, or none that exists.", "Choose a mode."},
    {FINDING_ID_MISSING, "id-missing", FINDING_FORBIDS_SAVE, "An element that others refer to has no id.",
     "Give it an id."},
    {FINDING_ID_DUPLICATE, "id-duplicate", FINDING_FORBIDS_SAVE, "Two elements have the same id.",
     "Rename one."},
    {FINDING_REFERENCE_UNRESOLVED, "reference-unresolved", FINDING_FORBIDS_SAVE,
     "An id refers to no element.", "Correct the id or remove the reference."},
    {FINDING_OUTPUT_DUPLICATE, "output-duplicate", FINDING_FORBIDS_SAVE,
     "Two output files, or two secondary files of one output, have the same type.", "Remove one."},
    {FINDING_ASSIGNMENT_DUPLICATE, "assignment-duplicate", FINDING_FORBIDS_SAVE,
     "Two assignments are for the same partition.", "Remove one."},
    {FINDING_VALUE_ILLEGAL, "value-illegal", FINDING_FORBIDS_SAVE,
     "A value is none that its attribute may have.", "Write one of the values named."},
    {FINDING_OUTPUT_NONE, "output-none", FINDING_FORBIDS_GENERATE, "The setup has no output file.",
     "Choose at least one."},
    {FINDING_OUTPUT_WITHOUT_INPUT, "output-without-input", FINDING_FORBIDS_GENERATE,
     "An output file has no bitstream or no flash device with content.", "Add the input."},
    {FINDING_OUTPUT_NOT_OFFERED, "output-not-offered", FINDING_FORBIDS_GENERATE,
     "The mode or the family does not offer the output type.", "Choose another type, mode or device."},
    {FINDING_OUTPUT_WITHOUT_WRITER, "output-without-writer", FINDING_FORBIDS_GENERATE,
     "This version cannot write the output type.", "Remove the output file."},
    {FINDING_OPTION_NOT_HONOURED, "option-not-honoured", FINDING_FORBIDS_GENERATE,
     "The setup asks for what this version does not do yet.", "Switch the option off."},
    {FINDING_OPTION_CONFLICT, "option-conflict", FINDING_FORBIDS_GENERATE, "Two options exclude each other.",
     "Switch one off."},
    {FINDING_BITSTREAM_EMPTY, "bitstream-empty", FINDING_FORBIDS_GENERATE, "A bitstream has no file.",
     "Add a file or remove the bitstream."},
    {FINDING_BITSTREAMS_TOO_MANY, "bitstreams-too-many", FINDING_FORBIDS_GENERATE,
     "A device takes a single bitstream and the setup has more.", "Remove the others."},
    {FINDING_INPUT_REFUSED, "input-refused", FINDING_FORBIDS_GENERATE,
     "An input file is missing, unreadable, damaged or for an unknown device.", "Replace the file."},
    {FINDING_INPUT_UNUSED, "input-unused", FINDING_WARNING, "An input goes into no output file.",
     "Assign it or remove it."},
    {FINDING_FAMILY_MIXED, "family-mixed", FINDING_FORBIDS_GENERATE,
     "Bitstreams of different families that cannot go together.", "Keep the files of one family."},
    {FINDING_FAMILY_WITHOUT_MODE, "family-without-mode", FINDING_FORBIDS_GENERATE,
     "The family of the bitstreams does not have the mode.", "Choose a mode of the family."},
    {FINDING_SCHEME_DIFFERENT, "scheme-different", FINDING_WARNING,
     "A bitstream was compiled for another configuration scheme.", "Compile it for the mode of the setup."},
    {FINDING_FLASH_UNKNOWN, "flash-unknown", FINDING_FORBIDS_GENERATE,
     "A flash device is in neither the flash database nor the custom one.", "Choose a known device."},
    {FINDING_FLASH_NOT_FOR_MODE, "flash-not-for-mode", FINDING_FORBIDS_GENERATE,
     "A flash device cannot configure the FPGA in this mode.", "Choose a device of the families named."},
    {FINDING_FLASH_TOO_MANY, "flash-too-many", FINDING_FORBIDS_GENERATE,
     "An output file is to hold several flash devices.", "Keep one."},
    {FINDING_FLASH_LOADER_MISSING, "flash-loader-missing", FINDING_FORBIDS_GENERATE,
     "An output type needs a flash loader and none is chosen.", "Choose the FPGA that reaches the flash."},
    {FINDING_FLASH_LOADER_UNKNOWN, "flash-loader-unknown", FINDING_FORBIDS_GENERATE,
     "The flash loader is no device of the device database.", "Choose a known device."},
    {FINDING_PARTITION_WITHOUT_INPUT, "partition-without-input", FINDING_FORBIDS_GENERATE,
     "A partition that the device boots from has no bitstream.", "Assign one."},
    {FINDING_PARTITION_EMPTY, "partition-empty", FINDING_WARNING,
     "A partition has no input and stays erased.", "Assign an input or remove the partition."},
    {FINDING_PARTITION_NAME_TOO_LONG, "partition-name-too-long", FINDING_FORBIDS_GENERATE,
     "A partition name does not fit the sub-partition table.", "Shorten it."},
    {FINDING_PAGE_OUT_OF_RANGE, "page-out-of-range", FINDING_FORBIDS_GENERATE, "A page number is too high.",
     "Choose a lower page."},
    {FINDING_PAGE_MISSING, "page-missing", FINDING_WARNING,
     "A bitstream in a flash device with pages has no page, so that the device cannot select it.",
     "Choose a page."},
    {FINDING_PAGE_SHARED, "page-shared", FINDING_FORBIDS_GENERATE, "Two partitions have the same page.",
     "Give each its own."},
    {FINDING_MBR_NOT_SUPPORTED, "mbr-not-supported", FINDING_FORBIDS_GENERATE,
     "The setup has a master boot record, which this version cannot write.", "Remove it."},
    {FINDING_FREQUENCY, "frequency", FINDING_FORBIDS_GENERATE,
     "The TCK frequency of a vector file is no number with its unit.", "Write one such as 10 MHz."},
    {FINDING_LAYOUT_ADDRESS, "layout-address", FINDING_FORBIDS_GENERATE,
     "An address is no hexadecimal number.", "Correct it or write \"auto\"."},
    {FINDING_LAYOUT_START_ABOVE_END, "layout-start-above-end", FINDING_FORBIDS_GENERATE,
     "A partition starts above its end.", "Correct the addresses."},
    {FINDING_LAYOUT_BEYOND_DEVICE, "layout-beyond-device", FINDING_FORBIDS_GENERATE,
     "A partition leaves the flash device.", "Move or shrink it, or choose a larger device."},
    {FINDING_LAYOUT_CONTENT, "layout-content", FINDING_FORBIDS_GENERATE,
     "The content of a partition does not fit.", "Enlarge the partition."},
    {FINDING_LAYOUT_OVERLAP, "layout-overlap", FINDING_FORBIDS_GENERATE, "Two partitions overlap.",
     "Move one of them."},
    {FINDING_LAYOUT_NO_ROOM, "layout-no-room", FINDING_FORBIDS_GENERATE,
     "No free block is large enough for an automatic partition.", "Make room or choose a larger device."},
    {FINDING_LAYOUT_UNALIGNED, "layout-unaligned", FINDING_WARNING, "A partition starts within a sector.",
     "Move it to a sector boundary."},
    {FINDING_FIRMWARE_MISSING, "firmware-missing", FINDING_WARNING, "The boot information has no firmware.",
     "Assign a bitstream with firmware to BOOT_INFO."},
    {FINDING_KEY_FILE, "key-file", FINDING_FORBIDS_GENERATE,
     "Encryption is on and the key file is missing or refused.", "Name a readable key file."},
    {FINDING_KEY_NAME, "key-name", FINDING_FORBIDS_GENERATE, "The key file has no key of that name.",
     "Choose a key of the file."},
    {FINDING_SIGNING_KEY, "signing-key", FINDING_FORBIDS_GENERATE,
     "Signing is on and the private key file is missing or refused.", "Name a PEM file with an EC key."},
    {FINDING_AES_KEY_FILE, "aes-key-file", FINDING_FORBIDS_GENERATE,
     "Encryption is to be finalised and the AES key file is missing or refused.", "Name an AES key file."},
    {FINDING_LOCK_FILE, "lock-file", FINDING_FORBIDS_GENERATE,
     "An encryption lock file is missing, damaged or not for this device and key.",
     "Name the lock file of the device."},
    {FINDING_PASSWORD_FILE, "password-file", FINDING_FORBIDS_GENERATE,
     "A password file is missing, unreadable or empty.", "Write the password into its first line."},
    {FINDING_KEY_FILE_OPEN, "key-file-open", FINDING_WARNING,
     "A file with a key or a password can be read by others.", "Take the rights from them."},
    {FINDING_FIRMWARE_ARCHIVE, "firmware-archive", FINDING_FORBIDS_GENERATE,
     "Co-signed firmware is missing, damaged or for another family.", "Name firmware for the family."},
    {FINDING_SECURITY_NOT_OFFERED, "security-not-offered", FINDING_FORBIDS_GENERATE,
     "The device cannot do the encryption or signing that is switched on.", "Switch it off."},
    {FINDING_FINALIZE_UNSIGNED, "finalize-unsigned", FINDING_FORBIDS_GENERATE,
     "The encryption of a bitstream that is not signed is to be finalised.", "Switch signing on."},
    {FINDING_ENCRYPTION_NOT_PREPARED, "encryption-not-prepared", FINDING_FORBIDS_GENERATE,
     "The encryption of a bitstream that was compiled without it is to be finalised.",
     "Compile the bitstream with encryption."},
    {FINDING_SIGNED_ELSEWHERE, "signed-elsewhere", FINDING_FORBIDS_GENERATE,
     "The private key is elsewhere, and no signatures are given.",
     "Write the digests, have them signed and give the signatures."},
    {FINDING_KEY_PROGRAMMING, "key-programming", FINDING_FORBIDS_GENERATE,
     "A key is to be programmed and there is none.",
     "Encrypt with a key file or make no key programming file."},
    {FINDING_NAME_ILLEGAL, "name-illegal", FINDING_FORBIDS_GENERATE, "A name cannot be that of a file.",
     "Choose another name."},
    {FINDING_DIRECTORY_MISSING, "directory-missing", FINDING_FORBIDS_GENERATE,
     "The output directory does not exist.", "Create it or choose another."},
    {FINDING_DIRECTORY_NOT_WRITABLE, "directory-not-writable", FINDING_FORBIDS_GENERATE,
     "Nothing can be written to the output directory.", "Change its permissions or choose another."},
    {FINDING_OUTPUT_BLOCKED, "output-blocked", FINDING_FORBIDS_GENERATE,
     "What has the name of an output file is no regular file.", "Remove it or choose another name."},
    {FINDING_OUTPUT_IS_INPUT, "output-is-input", FINDING_FORBIDS_GENERATE,
     "An output file would overwrite an input.", "Choose another name or directory."},
    {FINDING_OUTPUT_COLLISION, "output-collision", FINDING_FORBIDS_GENERATE,
     "Two output files are the same file.", "Choose another name or directory."},
};

} // namespace

std::span<const FINDING_ROW> finding_table()
{
    return ROWS;
}

const char* finding_severity_name(FINDING_SEVERITY severity)
{
    switch (severity) {
    case FINDING_FORBIDS_SAVE:
        return "forbids save";
    case FINDING_FORBIDS_GENERATE:
        return "forbids generate";
    case FINDING_WARNING:
        return "warning";
    }
    VEK_ASSERT_TEXT(false, "severity <= FINDING_WARNING");
    return "";
}

const FINDING_ROW& FINDING::row() const
{
    return ROWS[kind];
}

std::string FINDING::sentence() const
{
    return element.empty() ? text : element + ": " + text;
}

bool FINDINGS::has(FINDING_SEVERITY severity) const
{
    return std::any_of(m_findings.begin(), m_findings.end(),
                       [severity](const FINDING& finding) { return finding.row().severity == severity; });
}

bool FINDINGS::can_save() const
{
    return !has(FINDING_FORBIDS_SAVE);
}

bool FINDINGS::can_generate() const
{
    return can_save() && !has(FINDING_FORBIDS_GENERATE);
}

bool FINDINGS::has_warning() const
{
    return has(FINDING_WARNING);
}

std::string FINDINGS::message() const
{
    std::string text;
    for (const FINDING& finding : m_findings) {
        text += (text.empty() ? "" : "\n") + finding.sentence();
    }
    return text;
}

std::string element_label(const std::string& element, const std::string& id)
{
    return id.empty() ? element : element + " \"" + id + "\"";
}
