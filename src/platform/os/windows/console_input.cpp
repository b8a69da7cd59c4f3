#include <windows.h>

#include "platform/os/console_device.h"

namespace qmp::os {
namespace {

HANDLE input() {
    return GetStdHandle(STD_INPUT_HANDLE);
}

// Bytes of a file or pipe that were read and not yet handed out.
std::string pending;

bool is_modifier(WORD key) {
    switch (key) {
        case VK_SHIFT:
        case VK_CONTROL:
        case VK_MENU:
        case VK_CAPITAL:
        case VK_NUMLOCK:
        case VK_SCROLL:
        case VK_LWIN:
        case VK_RWIN:
            return true;
        default:
            return false;
    }
}

}  // namespace

bool input_is_console() {
    DWORD mode;
    return GetConsoleMode(input(), &mode) != 0;
}

std::optional<std::u16string> read_console() {
    constexpr char16_t end_of_input = 26;  // Ctrl+Z
    char16_t units[largest_read];
    DWORD count = 0;
    for (;;) {
        SetLastError(ERROR_SUCCESS);
        if (!ReadConsoleW(input(), units, largest_read, &count, nullptr)) return std::nullopt;
        if (count > 0) break;
        // Ctrl+C empties the line while another thread is about to end the process: that is no end of
        // input. Where the process was told to ignore it, the line begins anew.
        if (GetLastError() != ERROR_OPERATION_ABORTED) return std::nullopt;
        Sleep(100);
    }
    if (units[0] == end_of_input) return std::nullopt;
    return std::u16string(units, count);
}

std::optional<std::string> read_bytes() {
    if (pending.empty()) {
        char bytes[4096];
        DWORD count = 0;
        if (!ReadFile(input(), bytes, sizeof bytes, &count, nullptr) || count == 0) return std::nullopt;
        pending.assign(bytes, count);
    }
    std::size_t length = pending.find('\n');
    length = length == std::string::npos ? pending.size() : length + 1;
    if (length > largest_read) length = largest_read;
    std::string chunk = pending.substr(0, length);
    pending.erase(0, length);
    return chunk;
}

bool wait_for_key() {
    if (!input_is_console()) return false;
    for (;;) {
        INPUT_RECORD record;
        DWORD count = 0;
        if (!ReadConsoleInputW(input(), &record, 1, &count) || count == 0) return false;
        if (record.EventType != KEY_EVENT || !record.Event.KeyEvent.bKeyDown) continue;
        if (!is_modifier(record.Event.KeyEvent.wVirtualKeyCode)) return true;
    }
}

}  // namespace qmp::os
