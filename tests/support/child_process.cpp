#include "child_process.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

struct PIPE {
    std::array<int, 2> ends{-1, -1};
    PIPE() { EXPECT_EQ(::pipe(ends.data()), 0); }
};

[[noreturn]] void become(const std::vector<std::string>& command, const std::string& directory,
                         const std::vector<std::string>& environment)
{
    if (!directory.empty() && ::chdir(directory.c_str()) != 0) {
        ::_exit(126);
    }
    for (const std::string& entry : environment) {
        const std::size_t equals = entry.find('=');
        ::setenv(entry.substr(0, equals).c_str(), entry.substr(equals + 1).c_str(), 1);
    }
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
}

/// Reads both pipes to their ends, whichever has something to say.
void drain(int out_end, int err_end, CHILD_RESULT& result)
{
    std::array<pollfd, 2> waiting{pollfd{out_end, POLLIN, 0}, pollfd{err_end, POLLIN, 0}};
    const std::array<std::string*, 2> texts{&result.out, &result.err};
    while (waiting[0].fd >= 0 || waiting[1].fd >= 0) {
        ::poll(waiting.data(), waiting.size(), -1);
        for (std::size_t index = 0; index < waiting.size(); ++index) {
            if (waiting[index].revents == 0) {
                continue;
            }
            std::array<char, 65536> block;
            const ssize_t count = ::read(waiting[index].fd, block.data(), block.size());
            if (count > 0) {
                texts[index]->append(block.data(), static_cast<std::size_t>(count));
            } else {
                ::close(waiting[index].fd);
                waiting[index].fd = -1;
            }
        }
    }
}

} // namespace

CHILD_RESULT run_program(const std::vector<std::string>& command, const std::string& directory,
                         const std::vector<std::string>& environment)
{
    CHILD_RESULT result;
    PIPE out;
    PIPE err;
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(out.ends[1], STDOUT_FILENO);
        ::dup2(err.ends[1], STDERR_FILENO);
        for (const int end : {out.ends[0], out.ends[1], err.ends[0], err.ends[1]}) {
            ::close(end);
        }
        become(command, directory, environment);
    }
    ::close(out.ends[1]);
    ::close(err.ends[1]);
    drain(out.ends[0], err.ends[0], result);
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    result.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.peak_memory_kib = usage.ru_maxrss;
    return result;
}
