#include "thr_drl_double.h"

#include "thr_drl.h"

#include <dlfcn.h>
#include <stdexcept>

THR_DRL_DOUBLE& thr_drl_double()
{
    static THR_DRL_DOUBLE instance;
    return instance;
}

namespace
{

template <typename FUNCTION>
FUNCTION* loader(const char* symbol)
{
    void* const function = dlsym(RTLD_NEXT, symbol);
    if (function == nullptr) {
        throw std::runtime_error(std::string("the loader has no ") + symbol);
    }
    return reinterpret_cast<FUNCTION*>(function);
}

/// The module behind a handle that this file gave out; null for a handle of the loader.
const std::pair<const std::string, std::map<std::string, void*>>* find_module(THR_DRL_HANDLE handle)
{
    for (const auto& module : thr_drl_double().modules) {
        if (&module == handle) {
            return &module;
        }
    }
    return nullptr;
}

} // namespace

THR_DRL_HANDLE thr_drl_load(const std::string& name)
{
    THR_DRL_DOUBLE& own = thr_drl_double();
    own.calls.push_back("load " + name);
    const auto found = own.modules.find(name);
    if (found != own.modules.end()) {
        return &*found;
    }
    return loader<decltype(thr_drl_load)>("_Z12thr_drl_loadRKNSt7__cxx1112basic_stringIcSt11char_"
                                          "traitsIcESaIcEEE")(own.missing.count(name) ? name + "_moved_away"
                                                                                      : name);
}

void* thr_drl_find_function(THR_DRL_HANDLE handle, const std::string& symbol)
{
    thr_drl_double().calls.push_back("find " + symbol);
    const auto find = loader<decltype(thr_drl_find_function)>(
        "_Z21thr_drl_find_functionPvRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE");
    if (const auto* const module = find_module(handle)) {
        const auto found = module->second.find(symbol);
        // The loader's own words when there is no such function.
        return found != module->second.end() ? found->second : find(dlopen(nullptr, RTLD_NOW), symbol);
    }
    return find(handle, symbol);
}

void thr_drl_unload(THR_DRL_HANDLE handle)
{
    if (const auto* const module = find_module(handle)) {
        thr_drl_double().calls.push_back("unload " + module->first);
        return;
    }
    thr_drl_double().calls.push_back("unload");
    loader<decltype(thr_drl_unload)>("_Z14thr_drl_unloadPv")(handle);
}
