#include "support/pseudo_terminal.h"

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace kelvara_test {
namespace {

constexpr int patience_milliseconds = 20'000;

}  // namespace

PseudoTerminal::PseudoTerminal(const std::function<int()>& child, int columns, int rows) {
    winsize size{};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = static_cast<unsigned short>(rows);
    child_ = forkpty(&master_, nullptr, nullptr, &size);
    if (child_ < 0) std::abort();
    if (child_ == 0) _exit(child());
}

PseudoTerminal::PseudoTerminal(const std::vector<std::string>& command, int columns, int rows)
    : PseudoTerminal(
          [&command] {
              std::vector<char*> arguments;
              for (const std::string& argument : command)
                  arguments.push_back(const_cast<char*>(argument.c_str()));
              arguments.push_back(nullptr);
              execv(arguments[0], arguments.data());
              return 127;
          },
          columns, rows) {}

PseudoTerminal::~PseudoTerminal() {
    hang_up();
    if (child_ < 0) return;
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
}

void PseudoTerminal::hang_up() {
    if (master_ >= 0) close(master_);
    master_ = -1;
}

void PseudoTerminal::type(std::string_view keys) {
    while (!keys.empty()) {
        const ssize_t written = write(master_, keys.data(), keys.size());
        if (written <= 0) return;
        keys.remove_prefix(static_cast<std::size_t>(written));
    }
}

bool PseudoTerminal::read_some(int timeout_milliseconds) {
    pollfd ready{master_, POLLIN, 0};
    if (poll(&ready, 1, timeout_milliseconds) <= 0) return false;
    char bytes[4096];
    const ssize_t count = read(master_, bytes, sizeof bytes);
    if (count <= 0) return false;
    output_.append(bytes, static_cast<std::size_t>(count));
    return true;
}

bool PseudoTerminal::wait_for(std::string_view text) {
    for (;;) {
        const std::size_t found = output_.find(text, searched_);
        if (found != std::string::npos) {
            searched_ = found + text.size();
            return true;
        }
        if (!read_some(patience_milliseconds)) return false;
    }
}

int PseudoTerminal::wait_for_end() {
    while (master_ >= 0 && read_some(patience_milliseconds)) continue;
    // A child that neither ends nor writes is stuck.
    for (int waited = 0; waited < patience_milliseconds; waited += 10) {
        int status = 0;
        if (waitpid(child_, &status, WNOHANG) == child_) {
            child_ = -1;
            return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        }
        usleep(10'000);
    }
    return -1000;
}

std::vector<std::string> shown_lines(std::string_view output) {
    std::vector<std::string> lines(1);
    std::size_t column = 0;
    for (std::size_t i = 0; i < output.size(); ++i) {
        const char c = output[i];
        if (c == '\x1b') {
            // ESC [ parameters letter
            i = output.find_first_not_of("0123456789;", i + 2);
            if (i == std::string_view::npos) break;
        } else if (c == '\n') {
            lines.emplace_back();
        } else if (c == '\r') {
            column = 0;
        } else if (c == '\b') {
            if (column > 0) --column;
        } else {
            std::string& line = lines.back();
            if (line.size() <= column) line.resize(column + 1, ' ');
            line[column++] = c;
        }
    }
    for (std::string& line : lines) line.erase(line.find_last_not_of(' ') + 1);
    return lines;
}

}  // namespace kelvara_test
