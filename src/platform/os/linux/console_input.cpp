#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "platform/os/console_device.h"
#include "platform/os/linux/console_state.h"
#include "platform/os/unicode.h"

namespace qmp::os {

std::atomic<bool> terminal_is_uncooked{false};
termios cooked_terminal{};

namespace {

// Bytes that were read and not yet handed out: the rest of a line, or what was typed while the terminal
// was asked for its cursor.
std::string pending;

// Appends what the input has to `pending`; false at its end.
bool fill_pending() {
    char bytes[4096];
    for (;;) {
        const ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
        if (count > 0) {
            pending.append(bytes, static_cast<std::size_t>(count));
            return true;
        }
        if (count < 0 && errno == EAGAIN) {
            pollfd ready{STDIN_FILENO, POLLIN, 0};
            poll(&ready, 1, -1);
        } else if (count == 0 || errno != EINTR) {
            return false;
        }
    }
}

// A terminal whose lines are switched off for a moment: keys arrive one by one and are not echoed. One at a
// time, on the main thread.
class UncookedTerminal {
  public:
    UncookedTerminal() {
        active_ = tcgetattr(STDIN_FILENO, &cooked_terminal) == 0;
        if (!active_) return;
        termios uncooked = cooked_terminal;
        // Without ISIG an interrupt key arrives as a byte, so that the terminal can be restored first.
        uncooked.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG);
        uncooked.c_cc[VMIN] = 1;
        uncooked.c_cc[VTIME] = 0;
        terminal_is_uncooked = true;
        active_ = tcsetattr(STDIN_FILENO, TCSANOW, &uncooked) == 0;
    }
    ~UncookedTerminal() {
        if (active_) tcsetattr(STDIN_FILENO, TCSANOW, &cooked_terminal);
        terminal_is_uncooked = false;
    }
    UncookedTerminal(const UncookedTerminal&) = delete;
    UncookedTerminal& operator=(const UncookedTerminal&) = delete;

    bool active() const { return active_; }
    cc_t interrupt_key() const { return cooked_terminal.c_cc[VINTR]; }
    cc_t end_key() const { return cooked_terminal.c_cc[VEOF]; }

  private:
    bool active_ = false;
};

// A terminal that was opened for this process makes it the leader of its session; a shell started from
// there and everything that the shell starts in turn share a session whose leader is the shell.
bool terminal_is_our_own() {
    return getsid(0) == getpid() && tcgetpgrp(STDIN_FILENO) == getpgrp() && isatty(STDOUT_FILENO) == 1;
}

// Takes a cursor report ESC [ row ; column R out of the text.
bool extract_cursor_report(std::string& text, bool& at_home) {
    for (std::size_t start = text.find("\x1b["); start != std::string::npos;
         start = text.find("\x1b[", start + 1)) {
        const std::size_t end = text.find_first_not_of("0123456789;", start + 2);
        if (end == std::string::npos || text[end] != 'R') continue;
        at_home = text.compare(start + 2, end - start - 2, "1;1") == 0;
        text.erase(start, end + 1 - start);
        return true;
    }
    return false;
}

}  // namespace

bool input_is_console() {
    return isatty(STDIN_FILENO) == 1;
}

bool console_is_fresh() {
    if (!input_is_console() || !terminal_is_our_own() || is_dumb_terminal()) return false;
    const UncookedTerminal uncooked;
    if (!uncooked.active()) return false;
    write_bytes("\x1b[6n");
    constexpr int patience_milliseconds = 200;
    bool at_home = false;
    pollfd ready{STDIN_FILENO, POLLIN, 0};
    while (poll(&ready, 1, patience_milliseconds) > 0 && fill_pending()) {
        if (extract_cursor_report(pending, at_home)) return at_home;
    }
    return false;
}

std::optional<std::string> read_bytes() {
    if (pending.empty() && !fill_pending()) return std::nullopt;
    std::size_t length = pending.find('\n');
    length = length == std::string::npos ? pending.size() : length + 1;
    if (length > largest_read) length = largest_read;
    std::string chunk = pending.substr(0, length);
    pending.erase(0, length);
    return chunk;
}

std::optional<std::u16string> read_console() {
    // A terminal hands out whole lines, so that a character is cut only where a line outgrows the
    // terminal's own limit; a chunk ends before a character that would be cut.
    std::optional<std::string> bytes = read_bytes();
    if (!bytes) return std::nullopt;
    while (!pending.empty() && (static_cast<unsigned char>(pending.front()) & 0xc0) == 0x80) {
        bytes->push_back(pending.front());
        pending.erase(0, 1);
    }
    return to_utf16(*bytes);
}

bool wait_for_key() {
    if (!input_is_console()) return false;
    if (!pending.empty()) {
        pending.erase(0, 1);
        return true;
    }
    cc_t key = 0;
    bool interrupted = false;
    {
        const UncookedTerminal uncooked;
        if (!uncooked.active()) return false;
        ssize_t count;
        do {
            count = read(STDIN_FILENO, &key, 1);
        } while (count < 0 && errno == EINTR);
        if (count != 1 || key == uncooked.end_key()) return false;
        interrupted = key == uncooked.interrupt_key();
        // A key such as an arrow sends several bytes.
        pollfd ready{STDIN_FILENO, POLLIN, 0};
        char rest[32];
        if (key == 0x1b && poll(&ready, 1, 20) > 0 && read(STDIN_FILENO, rest, sizeof rest) < 0) return true;
    }
    if (interrupted) std::raise(SIGINT);
    return true;
}

}  // namespace qmp::os
