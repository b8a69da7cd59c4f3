#include "platform/os/process.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace qmp::os {
namespace {

// The whole of a file under /proc, whose size is not known beforehand; empty when it cannot be read.
std::string read_process_file(const char* path) {
    std::string content;
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return content;
    char bytes[4096];
    ssize_t count;
    while ((count = read(file, bytes, sizeof bytes)) > 0 || (count < 0 && errno == EINTR)) {
        if (count > 0) content.append(bytes, static_cast<std::size_t>(count));
    }
    close(file);
    return content;
}

void open_if_closed(int stream) {
    if (fcntl(stream, F_GETFD) >= 0 || errno != EBADF) return;
    // The lowest free number is given out, and every lower stream is open by now.
    if (open("/dev/null", O_RDWR) >= 0) return;
    // A place that takes no bytes will do as well.
    if (open("/", O_PATH) < 0) return;
}

}  // namespace

void prepare_process() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) open_if_closed(stream);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

std::string_view system_name() { return "Linux"; }

std::string_view system_interface_name() { return "Linux API"; }

std::vector<std::string> arguments() {
    const std::string joined = read_process_file("/proc/self/cmdline");
    std::vector<std::string> result;
    for (std::size_t start = 0; start < joined.size();) {
        const std::size_t end = std::min(joined.find('\0', start), joined.size());
        result.push_back(joined.substr(start, end - start));
        start = end + 1;
    }
    return result;
}

std::optional<std::string> program_path() {
    // The kernel does not say how long the link is: a result that fills the buffer may be cut.
    for (std::string buffer(256, '\0');; buffer.resize(buffer.size() * 2)) {
        const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
        if (length <= 0) return std::nullopt;
        if (static_cast<std::size_t>(length) == buffer.size()) continue;
        buffer.resize(static_cast<std::size_t>(length));
        return buffer;
    }
}

void lower_process_priority() {
    constexpr int below_normal = 5;
    errno = 0;
    const int present = getpriority(PRIO_PROCESS, 0);
    if (errno != 0 || present >= below_normal) return;
    setpriority(PRIO_PROCESS, 0, below_normal);
}

bool debugger_present() {
    static constexpr std::string_view label = "\nTracerPid:\t";
    const std::string status = read_process_file("/proc/self/status");
    const std::size_t line = status.find(label);
    return line != std::string::npos && std::atoi(status.c_str() + line + label.size()) != 0;
}

void exit_process(int exit_code) {
    std::fflush(nullptr);
    _exit(exit_code);
}

std::string_view system_error_text(std::uint32_t code, std::span<char> buffer) {
    // Unlike strerror, this neither translates nor allocates, so it can be used in a signal handler.
    const char* text = strerrordesc_np(static_cast<int>(code));
    if (text == nullptr) {
        const int length = std::snprintf(buffer.data(), buffer.size(), "Unknown error %u", code);
        return {buffer.data(), std::min(static_cast<std::size_t>(length), buffer.size() - 1)};
    }
    const std::size_t length = std::min(std::strlen(text), buffer.size());
    std::copy_n(text, length, buffer.data());
    return {buffer.data(), length};
}

std::string system_error_text(std::uint32_t code) {
    char buffer[256];
    return std::string(system_error_text(code, buffer));
}

}  // namespace qmp::os
