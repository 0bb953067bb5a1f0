#ifndef IN_CHILD_H
#define IN_CHILD_H

#include <functional>
#include <string>
#include <sys/types.h>

/// Runs `work` in a forked copy of this process and gives its result, so that limits, users and mounts of the
/// work do not touch the test. The text "(no answer)" when the child dies.
std::string in_child(const std::function<std::string()>& work);

/// The same as user nobody when the test runs as root.
std::string in_child_without_privileges(const std::function<std::string()>& work);

/// Forks a process that runs `work` and then waits for its end; returns when the work is done. The caller
/// kills it.
pid_t start_waiting_child(const std::function<void()>& work);

/// kill -9, and waits until it is gone.
void kill_child(pid_t child);

#endif
