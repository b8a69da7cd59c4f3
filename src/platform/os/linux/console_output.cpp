#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/os/console_device.h"
#include "platform/os/linux/console_state.h"
#include "platform/os/unicode.h"

namespace qmp::os {
namespace {

// The order of the eight colours is blue-green-red here and red-green-blue in terminal sequences.
constexpr int terminal_colour[8] = {0, 4, 2, 6, 1, 5, 3, 7};

char* append_number(char* end, int value) {
    if (value >= 10) end = append_number(end, value / 10);
    *end = static_cast<char>('0' + value % 10);
    return end + 1;
}

// Counted for the code that waits until nobody writes.
struct Writer {
    Writer() { ++console_writers; }
    ~Writer() { --console_writers; }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
};

}  // namespace

std::atomic<bool> console_was_coloured{false};
std::atomic<int> console_writers{0};
std::atomic<bool> console_is_closed{false};

bool is_dumb_terminal() {
    const char* terminal = std::getenv("TERM");
    return terminal != nullptr && std::strcmp(terminal, "dumb") == 0;
}

bool output_is_console() {
    return isatty(STDOUT_FILENO) == 1;
}

bool console_rewrites_lines() {
    return output_is_console() && !is_dumb_terminal();
}

void write_bytes(std::string_view bytes) {
    const Writer writer;
    while (!bytes.empty() && !console_is_closed) {
        const ssize_t written = write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd ready{STDOUT_FILENO, POLLOUT, 0};
            poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return;
        }
    }
}

void write_console(std::u16string_view text) {
    char bytes[1024];
    std::size_t used = 0;
    while (!text.empty()) {
        if (used > sizeof bytes - 4) {
            write_bytes({bytes, used});
            used = 0;
        }
        const DecodedCharacter decoded = decode_utf16(text);
        used += encode_utf8(decoded.character, bytes + used);
        text.remove_prefix(decoded.length);
    }
    write_bytes({bytes, used});
}

void set_text_attribute(int attribute) {
    if (is_dumb_terminal()) return;
    const int foreground = attribute & 15;
    const int background = (attribute >> 4) & 15;
    char sequence[32] = "\x1b[0";
    char* end = sequence + 3;
    // Light grey on black is what a console shows by default, so it stands for the terminal's own
    // default: the terminal is left as it was found, whatever its theme.
    if (foreground != 7) {
        *end++ = ';';
        end = append_number(end, (foreground >= 8 ? 90 : 30) + terminal_colour[foreground & 7]);
    }
    if (background != 0) {
        *end++ = ';';
        end = append_number(end, (background >= 8 ? 100 : 40) + terminal_colour[background & 7]);
    }
    *end++ = 'm';
    if (attribute != 7) console_was_coloured = true;  // before it appears: an interrupt may come in between
    write_bytes({sequence, static_cast<std::size_t>(end - sequence)});
}

WindowSize window_size() {
    winsize size{};
    if (!output_is_console() || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) return {};
    return {size.ws_col, size.ws_row};
}

WindowSize largest_window_size() {
    // A terminal does not tell how far its window could grow. It takes any request and grants what fits.
    constexpr int largest_request = 9999;
    if (!output_is_console() || is_dumb_terminal()) return {};
    return {largest_request, largest_request};
}

bool set_window_rectangle(int right, int bottom) {
    if (!output_is_console() || right < 0 || bottom < 0) return false;
    char sequence[32] = "\x1b[8;";
    char* end = append_number(sequence + 4, bottom + 1);
    *end++ = ';';
    end = append_number(end, right + 1);
    *end++ = 't';
    write_bytes({sequence, static_cast<std::size_t>(end - sequence)});
    return true;
}

}  // namespace qmp::os
