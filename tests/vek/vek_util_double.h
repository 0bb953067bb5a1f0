#ifndef IMAGEWRIGHT_TESTS_VEK_UTIL_DOUBLE_H
#define IMAGEWRIGHT_TESTS_VEK_UTIL_DOUBLE_H

#include "vek_util.h"

#include <functional>
#include <string>
#include <vector>

/// Stands between the window and the back end: a call goes to the function put here, or on to the back end
/// while there is none. The test program defines the operations of VEK_UTIL itself, and a program's own
/// definition comes before that of a library.
struct VEK_UTIL_DOUBLE {
    std::function<bool(PGM_COMMON_XML_VEK_VEK**, const std::string&)> parse;
    std::function<bool(const PGM_COMMON_XML_VEK_VEK*, const std::string&)> save;
    std::function<bool(const PGM_COMMON_XML_VEK_VEK*, bool&, bool&, std::string&, bool&, bool)> check;
    std::function<bool(PGM_COMMON_XML_VEK_VEK*)> generate;
    std::function<DEV_FAMILY_ENUM(const PGM_COMMON_XML_VEK_VEK*)> get_family;
    std::function<void(DEV_FAMILY_ENUM, DEV_DEVICE_ENUM, unsigned&, unsigned&, unsigned&)>
        get_family_pcf_info;

    /// The families that get_family_pcf_info was asked for, in order.
    std::vector<DEV_FAMILY_ENUM> asked_families;
};

/// The one in force.
VEK_UTIL_DOUBLE& vek_util_double();

#endif
