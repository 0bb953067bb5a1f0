#ifndef OUTPUT_PLAN_H
#define OUTPUT_PLAN_H

#include "format_registry.h"
#include "setup_view.h"

#include <string>
#include <vector>

/// One file that the setup asks for.
struct OUTPUT_PLAN {
    const PGM_COMMON_XML_VEK_OUTPUT_FILE* output = nullptr;       ///< itself, or the output it belongs to
    const PGM_COMMON_XML_VEK_SECONDARY_FILE* secondary = nullptr; ///< null for an output file itself
    VEK_FILE_TYPE type = VEK_INVALID_FILE_TYPE;
    FORMAT_PART part = FORMAT_PART::ALL;
    std::string label;                                        ///< OUTPUT_FILE "POF" / SECONDARY_FILE "MAP"
    std::string name;                                         ///< as the setup stores it
    std::string directory;                                    ///< absolute
    std::string file_name;                                    ///< with suffixes and extension
    std::string path;                                         ///< directory and file name
    const PGM_COMMON_XML_VEK_FILE_OPTIONS* options = nullptr; ///< null when there are none
    /// The file whose key a key programming file of its own holds; `output` is null then.
    const PGM_COMMON_XML_VEK_PATH* key_of = nullptr;
};

/// The files of a setup in document order, each output before its secondary files. Outputs whose type is no
/// output type are left out; the structure check names them. `directory_override` replaces the directories of
/// the setup unless it is empty.
std::vector<OUTPUT_PLAN> plan_outputs(const SETUP_VIEW& setup, const std::string& directory_override);

/// The same, and behind them the key programming files that encrypted files of bitstreams name.
std::vector<OUTPUT_PLAN> plan_files(const SETUP_VIEW& setup, const std::string& directory_override);

/// The label of an output file element in findings.
std::string output_label(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output);

/// The frequency that a text of the setup names, in Hz: a decimal number above 0 and its unit, Hz, kHz or MHz
/// in any case. False when it is none, or has a fraction of a Hz.
bool parse_frequency(const std::string& text, std::uint64_t& frequency);

/// Carries the options of the output over to a request. Addresses and frequency have passed the check.
void apply_file_options(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request);

#endif
