#ifndef GENERATE_JOB_H
#define GENERATE_JOB_H

#include "pgm_common_xml_vek_auto_export.h"
#include "signing_desk.h"
#include "vek_file_type.h"

#include <cstdint>
#include <string>
#include <vector>

/// How a generation differs from what the setup says.
struct GENERATE_OPTIONS {
    std::string output_directory; ///< replaces the directories of the setup unless it is empty
    unsigned threads = 0;         ///< at most so many at once; 0 for as many as the machine runs
    /// Where digests to be signed elsewhere go to, in which case no output file is written, or where their
    /// signatures come from.
    SIGNING_DESK desk{};
};

/// A file that generation has written under its final name.
struct WRITTEN_FILE {
    std::string path; ///< absolute
    VEK_FILE_TYPE type = VEK_INVALID_FILE_TYPE;
    std::uint64_t size = 0; ///< bytes
};

/// Writes all output files of the setup. Each is written to a temporary file in its directory, read back and
/// compared with what it was made from, and only then given its name; independent files are written at the
/// same time. Equal setups and inputs give equal bytes.
///
/// `written` lists the files that stand under their final names, in document order, also when others have
/// failed. A setup that the check refuses in what it says is not begun. Every failure is reported through the
/// message service, those of outputs in document order; the result is true when all files were written.
/// Relative paths are taken against the current directory. Any thread; the document must stay as it is
/// meanwhile.
bool generate_document(const PGM_COMMON_XML_VEK_VEK& document, const GENERATE_OPTIONS& options,
                       std::vector<WRITTEN_FILE>& written);

/// How a verification is done.
struct VERIFY_OPTIONS {
    std::string output_directory; ///< looks here instead of where the setup says, unless it is empty
    unsigned threads = 0;         ///< at most so many at once; 0 for as many as the machine runs
    /// Looks at this file alone, which stands for the output that has its path, or else its file name.
    std::string file;
    SIGNING_DESK desk{}; ///< where the signatures of keys that are kept elsewhere come from
};

/// What verification has found out about an output.
struct OUTPUT_VERDICT {
    std::string path; ///< absolute
    VEK_FILE_TYPE type = VEK_INVALID_FILE_TYPE;
    std::uint64_t size = 0; ///< bytes of the file, 0 when it cannot be read
    std::string problem;    ///< a whole sentence that names the file and the place; empty when all is well
};

/// Compares the output files of a setup with what generation would write now, and writes nothing. `verdicts`
/// gets one entry for each output in document order. A setup that the check refuses in what it says is not
/// begun, and neither is one whose flash layout proves impossible: the findings are reported through the
/// message service, and the result is false. `verdicts` stays empty when `options.file` is none of the
/// outputs. The rest as for generation.
bool verify_outputs(const PGM_COMMON_XML_VEK_VEK& document, const VERIFY_OPTIONS& options,
                    std::vector<OUTPUT_VERDICT>& verdicts);

#endif
