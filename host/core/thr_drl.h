#ifndef THR_DRL_H
#define THR_DRL_H

#include <string>

/// Loading of modules at the moment of use.
using THR_DRL_HANDLE = void*;

/// Loads lib<name>.so from beside the program, from ../lib or ../lib/imagewright next to it, or from the
/// library path of the system, in this order. Null when that fails; thr_drl_get_error() tells why. `name` is
/// a bare name ("mod_help").
THR_DRL_HANDLE thr_drl_load(const std::string& name);

/// The address of a function, or null.
void* thr_drl_find_function(THR_DRL_HANDLE handle, const std::string& symbol);

/// Why the last call of this thread failed, in a sentence; empty when it did not.
std::string thr_drl_get_error();

/// Gives a module back. A null handle is passed over.
void thr_drl_unload(THR_DRL_HANDLE handle);

#endif
