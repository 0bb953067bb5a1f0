#ifndef COMPLETION_H
#define COMPLETION_H

#include <CLI/CLI.hpp>

#include <string>

/// Completion scripts made from the declared commands and options, so that no list of them is kept twice.
std::string bash_completion(const CLI::App& application);
std::string zsh_completion(const CLI::App& application);

#endif
