#include "support/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>

namespace kelvara_test {
namespace {

constexpr std::int64_t had_to_be_ended = -1000;

void become(const std::vector<std::string>& command, const ChildSettings& settings, int output) {
    if (!settings.folder.empty() && chdir(settings.folder.c_str()) != 0) _exit(126);
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(null, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    if (settings.input == ChildStream::closed) close(STDIN_FILENO);
    if (settings.output == ChildStream::closed) {
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
    }
    std::vector<char*> arguments;
    for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    _exit(127);
}

}  // namespace

ChildEnd run_child(const std::vector<std::string>& command, const ChildSettings& settings) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + std::chrono::minutes(1);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) std::abort();
    const pid_t child = fork();
    if (child < 0) std::abort();
    if (child == 0) {
        if (settings.output == ChildStream::broken_pipe) close(ends[0]);
        become(command, settings, ends[1]);
    }
    close(ends[1]);
    ChildEnd end;
    if (settings.output == ChildStream::broken_pipe) close(ends[0]);
    bool open = settings.output != ChildStream::broken_pipe;
    bool ended = false;
    int status = 0;
    while (!ended && Clock::now() < deadline) {
        pollfd ready{open ? ends[0] : -1, POLLIN, 0};
        if (poll(&ready, 1, 10) > 0) {
            char bytes[4096];
            const ssize_t count = read(ends[0], bytes, sizeof bytes);
            open = count > 0;
            if (open) end.output.append(bytes, static_cast<std::size_t>(count));
            continue;
        }
        // Silent for a moment: it may be over.
        ended = waitpid(child, &status, WNOHANG) == child;
    }
    if (!ended) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
        end.exit_code = had_to_be_ended;
    } else {
        end.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    if (settings.output != ChildStream::broken_pipe) {
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
        char bytes[4096];
        ssize_t count;
        while ((count = read(ends[0], bytes, sizeof bytes)) > 0)
            end.output.append(bytes, static_cast<std::size_t>(count));
        close(ends[0]);
    }
    return end;
}

}  // namespace kelvara_test
