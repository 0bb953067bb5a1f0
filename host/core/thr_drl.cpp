#include "thr_drl.h"

#include <dlfcn.h>
#include <filesystem>
#include <system_error>

namespace
{

std::string& error_of_this_thread()
{
    static thread_local std::string error;
    return error;
}

void keep_loader_error(const std::string& what)
{
    const char* const reason = dlerror();
    error_of_this_thread() = what + ": " + (reason != nullptr ? reason : "the loader gives no reason") + ".";
}

} // namespace

THR_DRL_HANDLE thr_drl_load(const std::string& name)
{
    namespace fs = std::filesystem;
    error_of_this_thread().clear();
    if (name.empty() || name.find('/') != std::string::npos) {
        error_of_this_thread() = "\"" + name + "\" is no module name: it has to be a bare name.";
        return nullptr;
    }
    std::string file = "lib" + name + ".so";
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error).parent_path();
    if (!error) {
        for (const char* const place : {".", "../lib", "../lib/imagewright"}) {
            const fs::path candidate = program / place / file;
            if (fs::exists(candidate, error)) {
                file = candidate.lexically_normal().string();
                break;
            }
        }
    }
    void* const handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        keep_loader_error("The module " + name + " cannot be loaded");
    }
    return handle;
}

void* thr_drl_find_function(THR_DRL_HANDLE handle, const std::string& symbol)
{
    error_of_this_thread().clear();
    if (handle == nullptr) {
        error_of_this_thread() = "The function " + symbol + " cannot be found: its module is not loaded.";
        return nullptr;
    }
    dlerror();
    void* const function = dlsym(handle, symbol.c_str());
    if (function == nullptr) {
        keep_loader_error("The function " + symbol + " cannot be found");
    }
    return function;
}

std::string thr_drl_get_error()
{
    return error_of_this_thread();
}

void thr_drl_unload(THR_DRL_HANDLE handle)
{
    error_of_this_thread().clear();
    if (handle != nullptr && dlclose(handle) != 0) {
        keep_loader_error("The module cannot be unloaded");
    }
}
