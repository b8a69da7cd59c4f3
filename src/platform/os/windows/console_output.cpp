#include <windows.h>

#include <atomic>

#include "platform/os/console_device.h"

namespace qmp::os {
namespace {

constexpr int default_attribute = 7;

// Whether the console shows another colour than its default.
std::atomic<bool> coloured{false};

HANDLE output() {
    return GetStdHandle(STD_OUTPUT_HANDLE);
}

// Runs on a thread that the system starts. What it returns leaves the end of the process to the system.
BOOL WINAPI restore_colour(DWORD) {
    if (coloured) SetConsoleTextAttribute(output(), default_attribute);
    return FALSE;
}

}  // namespace

bool output_is_console() {
    DWORD mode;
    return GetConsoleMode(output(), &mode) != 0;
}

bool console_rewrites_lines() {
    return output_is_console();
}

bool console_is_fresh() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    return GetConsoleScreenBufferInfo(output(), &info) != 0 && info.dwCursorPosition.X == 0 &&
           info.dwCursorPosition.Y == 0;
}

void set_text_attribute(int attribute) {
    if (attribute != default_attribute) coloured = true;
    SetConsoleTextAttribute(output(), static_cast<WORD>(attribute));
    if (attribute == default_attribute) coloured = false;
}

void restore_console_when_interrupted() {
    SetConsoleCtrlHandler(restore_colour, TRUE);
}

void write_console(std::u16string_view text) {
    while (!text.empty()) {
        DWORD written = 0;
        if (!WriteConsoleW(output(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr)) return;
        if (written == 0) return;
        text.remove_prefix(written);
    }
}

void write_bytes(std::string_view bytes) {
    constexpr std::size_t largest_transfer = std::size_t{1} << 30;
    while (!bytes.empty()) {
        const std::size_t size = bytes.size() < largest_transfer ? bytes.size() : largest_transfer;
        DWORD written = 0;
        if (!WriteFile(output(), bytes.data(), static_cast<DWORD>(size), &written, nullptr)) return;
        if (written == 0) return;
        bytes.remove_prefix(written);
    }
}

WindowSize window_size() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!GetConsoleScreenBufferInfo(output(), &info)) return {};
    return {info.srWindow.Right - info.srWindow.Left + 1, info.srWindow.Bottom - info.srWindow.Top + 1};
}

WindowSize largest_window_size() {
    const HANDLE handle = output();
    if (handle == INVALID_HANDLE_VALUE || handle == nullptr) return {};
    const COORD size = GetLargestConsoleWindowSize(handle);
    return {size.X, size.Y};
}

bool set_window_rectangle(int right, int bottom) {
    const SMALL_RECT rectangle{0, 0, static_cast<SHORT>(right), static_cast<SHORT>(bottom)};
    return SetConsoleWindowInfo(output(), TRUE, &rectangle) != 0;
}

}  // namespace qmp::os
