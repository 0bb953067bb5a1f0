#ifndef IMAGEWRIGHT_TESTS_VEK_FILE_ASSISTANT_DOUBLE_H
#define IMAGEWRIGHT_TESTS_VEK_FILE_ASSISTANT_DOUBLE_H

#include "vek_file_assistant.h"

#include <functional>
#include <string>
#include <vector>

/// Stands between the window and the parameter interface of the document, as VEK_UTIL_DOUBLE does for the
/// back end: while a log is alive, each call is written down, and refused when `refuse` says so.
class VEK_FILE_ASSISTANT_LOG
{
public:
    VEK_FILE_ASSISTANT_LOG();
    ~VEK_FILE_ASSISTANT_LOG();
    VEK_FILE_ASSISTANT_LOG(const VEK_FILE_ASSISTANT_LOG&) = delete;
    VEK_FILE_ASSISTANT_LOG& operator=(const VEK_FILE_ASSISTANT_LOG&) = delete;

    /// The calls since the last take, one a line: "set output_file type=RBF name=top". Parameters have the
    /// names of the command line.
    std::string take();

    /// Queries ("get") are written down too.
    bool has_queries = false;

    /// Refuses the calls for whose line it is true; they do not reach the document.
    std::function<bool(const std::string& line)> refuse;

    /// Called by the double. False when the call is refused.
    bool pass(const std::string& operation, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
              const VEK_FILE_ASSISTANT::PARAMS& params);

private:
    VEK_FILE_ASSISTANT_LOG* m_outer;
    std::string m_calls;
};

#endif
