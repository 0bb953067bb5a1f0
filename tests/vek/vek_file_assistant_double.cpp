#include "vek_file_assistant_double.h"

#include <dlfcn.h>
#include <stdexcept>

namespace
{

VEK_FILE_ASSISTANT_LOG* current_log = nullptr;

using OPERATION = bool(PGM_COMMON_XML_VEK_VEK*, PGM_COMMON_XML_VEK_CMD_OPT_ENUM,
                       const VEK_FILE_ASSISTANT::PARAMS&);

using QUERY = VEK_FILE_ASSISTANT::PARAMS(const PGM_COMMON_XML_VEK_VEK*, PGM_COMMON_XML_VEK_CMD_OPT_ENUM,
                                         const VEK_FILE_ASSISTANT::PARAMS&);
constexpr char QUERY_SYMBOL[] =
    "_ZN18VEK_FILE_ASSISTANT3getEPK22PGM_COMMON_XML_VEK_VEK31PGM_COMMON_XML_VEK_CMD_OPT_"
    "ENUMRKSt6vectorISt4pair"
    "I33PGM_COMMON_XML_VEK_CMD_PARAM_ENUMNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEESaISD_EE";

void* back_end(const std::string& symbol)
{
    void* const function = dlsym(RTLD_NEXT, symbol.c_str());
    if (function == nullptr) {
        throw std::runtime_error("the back end has no " + symbol);
    }
    return function;
}

OPERATION* operation_of_back_end(const std::string& operation)
{
    const std::string symbol =
        "_ZN18VEK_FILE_ASSISTANT" + operation +
        "EP22PGM_COMMON_XML_VEK_VEK31PGM_COMMON_XML_VEK_CMD_OPT_ENUMRKSt6vectorISt4pairI33PGM_COMMON_XML_VEK_"
        "CMD_PARAM_ENUMNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEESaISC_EE";
    return reinterpret_cast<OPERATION*>(back_end(symbol));
}

} // namespace

bool VEK_FILE_ASSISTANT::set(PGM_COMMON_XML_VEK_VEK* document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                             const PARAMS& params)
{
    static OPERATION* const real = operation_of_back_end("3set");
    return (current_log == nullptr || current_log->pass("set", option, params)) &&
           real(document, option, params);
}

bool VEK_FILE_ASSISTANT::remove(PGM_COMMON_XML_VEK_VEK* document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                                const PARAMS& params)
{
    static OPERATION* const real = operation_of_back_end("6remove");
    return (current_log == nullptr || current_log->pass("remove", option, params)) &&
           real(document, option, params);
}

VEK_FILE_ASSISTANT::PARAMS VEK_FILE_ASSISTANT::get(const PGM_COMMON_XML_VEK_VEK* document,
                                                   PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                                                   const PARAMS& params)
{
    static QUERY* const real = reinterpret_cast<QUERY*>(back_end(QUERY_SYMBOL));
    if (current_log != nullptr && current_log->has_queries) {
        current_log->pass("get", option, params);
    }
    return real(document, option, params);
}

VEK_FILE_ASSISTANT_LOG::VEK_FILE_ASSISTANT_LOG() : m_outer(current_log)
{
    current_log = this;
}

VEK_FILE_ASSISTANT_LOG::~VEK_FILE_ASSISTANT_LOG()
{
    current_log = m_outer;
}

std::string VEK_FILE_ASSISTANT_LOG::take()
{
    return std::exchange(m_calls, std::string());
}

bool VEK_FILE_ASSISTANT_LOG::pass(const std::string& operation, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                                  const VEK_FILE_ASSISTANT::PARAMS& params)
{
    std::string line = operation + " " + PGM_COMMON_XML_VEK_CMD_OPT.at(option);
    for (const auto& [param, text] : params) {
        line += std::string(" ") + PGM_COMMON_XML_VEK_CMD_PARAM.at(param) + "=" + text;
    }
    m_calls += line + "\n";
    return !refuse || !refuse(line);
}
