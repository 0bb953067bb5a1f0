#ifndef FINDING_H
#define FINDING_H

#include <span>
#include <string>
#include <vector>

/// What a finding keeps the user from doing.
enum FINDING_SEVERITY {
    FINDING_FORBIDS_SAVE,     ///< the structure is broken: neither saved nor generated
    FINDING_FORBIDS_GENERATE, ///< can be saved, not generated
    FINDING_WARNING,          ///< can be generated
};

/// All that the check can find, one row of the table in finding.cpp each.
enum FINDING_KIND {
    FINDING_MODE_MISSING,
    FINDING_ID_MISSING,
    FINDING_ID_DUPLICATE,
    FINDING_REFERENCE_UNRESOLVED,
    FINDING_OUTPUT_DUPLICATE,
    FINDING_ASSIGNMENT_DUPLICATE,
    FINDING_VALUE_ILLEGAL,
    FINDING_OUTPUT_NONE,
    FINDING_OUTPUT_WITHOUT_INPUT,
    FINDING_OUTPUT_NOT_OFFERED,
    FINDING_OUTPUT_WITHOUT_WRITER,
    FINDING_OPTION_NOT_HONOURED,
    FINDING_OPTION_CONFLICT,
    FINDING_BITSTREAM_EMPTY,
    FINDING_BITSTREAMS_TOO_MANY,
    FINDING_INPUT_REFUSED,
    FINDING_INPUT_UNUSED,
    FINDING_FAMILY_MIXED,
    FINDING_FAMILY_WITHOUT_MODE,
    FINDING_SCHEME_DIFFERENT,
    FINDING_FLASH_UNKNOWN,
    FINDING_FLASH_NOT_FOR_MODE,
    FINDING_FLASH_TOO_MANY,
    FINDING_FLASH_LOADER_MISSING,
    FINDING_FLASH_LOADER_UNKNOWN,
    FINDING_PARTITION_WITHOUT_INPUT,
    FINDING_PARTITION_EMPTY,
    FINDING_PARTITION_NAME_TOO_LONG,
    FINDING_PAGE_OUT_OF_RANGE,
    FINDING_PAGE_MISSING,
    FINDING_PAGE_SHARED,
    FINDING_MBR_NOT_SUPPORTED,
    FINDING_FREQUENCY,
    FINDING_LAYOUT_ADDRESS,
    FINDING_LAYOUT_START_ABOVE_END,
    FINDING_LAYOUT_BEYOND_DEVICE,
    FINDING_LAYOUT_CONTENT,
    FINDING_LAYOUT_OVERLAP,
    FINDING_LAYOUT_NO_ROOM,
    FINDING_LAYOUT_UNALIGNED,
    FINDING_FIRMWARE_MISSING,
    FINDING_KEY_FILE,
    FINDING_KEY_NAME,
    FINDING_SIGNING_KEY,
    FINDING_AES_KEY_FILE,
    FINDING_LOCK_FILE,
    FINDING_PASSWORD_FILE,
    FINDING_KEY_FILE_OPEN,
    FINDING_FIRMWARE_ARCHIVE,
    FINDING_SECURITY_NOT_OFFERED,
    FINDING_FINALIZE_UNSIGNED,
    FINDING_ENCRYPTION_NOT_PREPARED,
    FINDING_SIGNED_ELSEWHERE,
    FINDING_KEY_PROGRAMMING,
    FINDING_NAME_ILLEGAL,
    FINDING_DIRECTORY_MISSING,
    FINDING_DIRECTORY_NOT_WRITABLE,
    FINDING_OUTPUT_BLOCKED,
    FINDING_OUTPUT_IS_INPUT,
    FINDING_OUTPUT_COLLISION,
};

struct FINDING_ROW {
    FINDING_KIND kind;
    const char* name; ///< as docs/check-findings.md and the command line show it
    FINDING_SEVERITY severity;
    const char* meaning; ///< what was found
    const char* remedy;  ///< what the user does about it
};

/// One row per kind, in the order of the enumeration.
std::span<const FINDING_ROW> finding_table();

/// Words of a severity: "forbids save", "forbids generate", "warning".
const char* finding_severity_name(FINDING_SEVERITY severity);

/// Something that the check has found in a setup.
struct FINDING {
    FINDING_KIND kind;
    std::string element; ///< path of element names and ids, as in OUTPUT_FILE "POF" / FLASH_DEVICE_ID
    std::string text;    ///< whole sentences: value found, value wanted, what to do

    const FINDING_ROW& row() const;
    /// The line that the user reads: element, colon, text.
    std::string sentence() const;
};

/// All findings of one check, in the order in which they were made.
class FINDINGS
{
public:
    void add(FINDING_KIND kind, const std::string& element, const std::string& text)
    {
        m_findings.push_back({kind, element, text});
    }

    const std::vector<FINDING>& all() const { return m_findings; }
    bool can_save() const;
    bool can_generate() const;
    bool has_warning() const;
    /// Every sentence, one a line, without a line feed at the end.
    std::string message() const;

private:
    bool has(FINDING_SEVERITY severity) const;
    std::vector<FINDING> m_findings;
};

/// How a finding names an element: the name, and its id or type in quotes.
std::string element_label(const std::string& element, const std::string& id);

#endif
