#include "vek_util_double.h"

#include <dlfcn.h>
#include <stdexcept>

VEK_UTIL_DOUBLE& vek_util_double()
{
    static VEK_UTIL_DOUBLE instance;
    return instance;
}

namespace
{

template <typename FUNCTION>
FUNCTION* back_end(const char* symbol)
{
    void* const function = dlsym(RTLD_NEXT, symbol);
    if (function == nullptr) {
        throw std::runtime_error(std::string("the back end has no ") + symbol);
    }
    return reinterpret_cast<FUNCTION*>(function);
}

} // namespace

bool VEK_UTIL::parse(PGM_COMMON_XML_VEK_VEK** document, const std::string& path)
{
    if (vek_util_double().parse) {
        return vek_util_double().parse(document, path);
    }
    return back_end<decltype(parse)>("_ZN8VEK_UTIL5parseEPP22PGM_COMMON_XML_VEK_VEKRKNSt7__cxx1112basic_"
                                     "stringIcSt11char_traitsIcESaIcEEE")(document, path);
}

bool VEK_UTIL::save(const PGM_COMMON_XML_VEK_VEK* document, const std::string& path)
{
    if (vek_util_double().save) {
        return vek_util_double().save(document, path);
    }
    return back_end<decltype(save)>(
        "_ZN8VEK_UTIL4saveEPK22PGM_COMMON_XML_VEK_VEKRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE")(
        document, path);
}

bool VEK_UTIL::check(const PGM_COMMON_XML_VEK_VEK* document, bool& can_save, bool& can_generate,
                     std::string& message, bool& has_warning, bool include_files)
{
    if (vek_util_double().check) {
        return vek_util_double().check(document, can_save, can_generate, message, has_warning, include_files);
    }
    return back_end<decltype(check)>("_ZN8VEK_UTIL5checkEPK22PGM_COMMON_XML_VEK_VEKRbS3_RNSt7__cxx1112basic_"
                                     "stringIcSt11char_traitsIcESaIcEEES3_b")(
        document, can_save, can_generate, message, has_warning, include_files);
}

bool VEK_UTIL::generate(PGM_COMMON_XML_VEK_VEK* document)
{
    if (vek_util_double().generate) {
        return vek_util_double().generate(document);
    }
    return back_end<decltype(generate)>("_ZN8VEK_UTIL8generateEP22PGM_COMMON_XML_VEK_VEK")(document);
}

DEV_FAMILY_ENUM VEK_UTIL::get_family(const PGM_COMMON_XML_VEK_VEK* document)
{
    if (vek_util_double().get_family) {
        return vek_util_double().get_family(document);
    }
    return back_end<decltype(get_family)>("_ZN8VEK_UTIL10get_familyEPK22PGM_COMMON_XML_VEK_VEK")(document);
}

void VEK_UTIL::get_family_pcf_info(DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM device, unsigned& mode_mask_a,
                                   unsigned& mode_mask_b, unsigned& output_file_mask)
{
    vek_util_double().asked_families.push_back(family);
    if (vek_util_double().get_family_pcf_info) {
        vek_util_double().get_family_pcf_info(family, device, mode_mask_a, mode_mask_b, output_file_mask);
        return;
    }
    back_end<decltype(get_family_pcf_info)>(
        "_ZN8VEK_UTIL19get_family_pcf_infoE15DEV_FAMILY_ENUM15DEV_DEVICE_ENUMRjS2_S2_")(
        family, device, mode_mask_a, mode_mask_b, output_file_mask);
}
