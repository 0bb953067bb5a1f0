#include "check.h"
#include "setup_security.h"
#include "vek_file_assistant.h"

void check_key_programming(const SETUP_VIEW& setup, FINDINGS& findings)
{
    for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : setup.output_files()) {
        if (output_type_of(output->type) != VEK_EKP_FILE_TYPE) {
            continue;
        }
        for (const std::string& id : output_bitstreams(setup, *output)) {
            const PGM_COMMON_XML_VEK_BITSTREAM* bitstream = setup.bitstreams().find(id);
            for (const PGM_COMMON_XML_VEK_PATH* path :
                 bitstream != nullptr ? bitstream->path : std::vector<PGM_COMMON_XML_VEK_PATH*>()) {
                if (!VEK_FILE_ASSISTANT::convert_string_to_bool(path->encryption)) {
                    findings.add(
                        FINDING_KEY_PROGRAMMING, output_label(*output),
                        "The file \"" + path->text +
                            "\" is not encrypted, so there is no key to program; switch its encryption "
                            "on or remove the output file.");
                } else if (!path->elk_file.empty()) {
                    findings.add(
                        FINDING_KEY_PROGRAMMING, output_label(*output),
                        "The file \"" + path->text +
                            "\" is encrypted by a lock file, which holds no key to program; name a key "
                            "file or remove the output file.");
                }
            }
        }
    }
    for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : setup.bitstreams().all()) {
        for (const PGM_COMMON_XML_VEK_PATH* path : bitstream->path) {
            if (VEK_FILE_ASSISTANT::convert_string_to_bool(path->encryption) && !path->ekp_file.empty() &&
                !path->elk_file.empty()) {
                findings.add(
                    FINDING_KEY_PROGRAMMING, path_label(*bitstream, *path),
                    "A key programming file is asked for, and the lock file holds no key to program; "
                    "name a key file or remove the key programming file.");
            }
        }
    }
}

void check_keys(const SETUP_VIEW& setup, const SIGNING_DESK& desk, FINDINGS& findings)
{
    SETUP_SECURITY().load(setup, desk, findings);
}
