#include "in_child.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr unsigned NOBODY = 65534;

void send(int descriptor, const std::string& text)
{
    if (write(descriptor, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        _exit(1);
    }
}

} // namespace

std::string in_child(const std::function<std::string()>& work)
{
    int ends[2];
    if (pipe(ends) != 0) {
        return "(no pipe)";
    }
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        send(ends[1], work());
        _exit(0);
    }
    close(ends[1]);
    std::string answer;
    std::array<char, 4096> block;
    for (ssize_t count = 0; (count = read(ends[0], block.data(), block.size())) > 0;) {
        answer.append(block.data(), static_cast<std::size_t>(count));
    }
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? answer : "(no answer)";
}

std::string in_child_without_privileges(const std::function<std::string()>& work)
{
    return in_child([&work]() -> std::string {
        if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(NOBODY) != 0 || setuid(NOBODY) != 0)) {
            return "(still root)";
        }
        return work();
    });
}

pid_t start_waiting_child(const std::function<void()>& work)
{
    int ends[2];
    if (pipe(ends) != 0) {
        return -1;
    }
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        work();
        send(ends[1], "!");
        for (;;) {
            pause();
        }
    }
    close(ends[1]);
    char done = 0;
    EXPECT_EQ(read(ends[0], &done, 1), 1);
    close(ends[0]);
    return child;
}

void kill_child(pid_t child)
{
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}
