#ifndef IMAGEWRIGHT_TESTS_THR_DRL_DOUBLE_H
#define IMAGEWRIGHT_TESTS_THR_DRL_DOUBLE_H

#include <map>
#include <set>
#include <string>
#include <vector>

/// Stands between the window and the dynamic loader: a call goes on to the loader unless it is about a module
/// named here.
struct THR_DRL_DOUBLE {
    std::set<std::string> missing; ///< modules that are looked for under a name that is not there
    /// Modules that consist of these functions.
    std::map<std::string, std::map<std::string, void*>> modules;
    std::vector<std::string> calls; ///< "load mod_help", "find help_show_context_impl", "unload mod_help"
};

/// The one in force.
THR_DRL_DOUBLE& thr_drl_double();

#endif
