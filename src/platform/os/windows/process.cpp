#include "platform/os/process.h"

#include <windows.h>
// After windows.h, on whose types it builds.
#include <shellapi.h>

#include <cstdio>

#include "platform/os/unicode.h"

namespace qmp::os {
namespace {

std::u16string_view as_utf16(const wchar_t* text, std::size_t length) {
    return {reinterpret_cast<const char16_t*>(text), length};
}

}  // namespace

// Here a write that fails has never ended a process, and a stream that was closed at start is a handle that
// no file is ever given.
void prepare_process() {}

std::string_view system_name() { return "Windows"; }

std::string_view system_interface_name() { return "WinAPI"; }

std::vector<std::string> arguments() {
    std::vector<std::string> result;
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (wide == nullptr) return result;
    for (int i = 0; i < count; ++i) result.push_back(to_utf8(as_utf16(wide[i], lstrlenW(wide[i]))));
    LocalFree(wide);
    return result;
}

std::optional<std::string> program_path() {
    // A path that does not fit is cut to the size of the buffer.
    for (std::wstring buffer(MAX_PATH, L'\0');; buffer.resize(buffer.size() * 2)) {
        const DWORD length = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length == 0) return std::nullopt;
        if (length < buffer.size()) return to_utf8(as_utf16(buffer.data(), length));
    }
}

void lower_process_priority() {
    SetPriorityClass(GetCurrentProcess(), BELOW_NORMAL_PRIORITY_CLASS);
}

bool debugger_present() {
    return IsDebuggerPresent() != 0;
}

void exit_process(int exit_code) {
    std::fflush(nullptr);
    ExitProcess(static_cast<UINT>(exit_code));
}

std::string_view system_error_text(std::uint32_t code, std::span<char> buffer) {
    wchar_t wide[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                                  0, wide, 512, nullptr);
    if (length == 0) {
        const int written = std::snprintf(buffer.data(), buffer.size(), "Unknown error %lu", DWORD{code});
        const auto size = static_cast<std::size_t>(written);
        return {buffer.data(), size < buffer.size() ? size : buffer.size() - 1};
    }
    while (length > 0 && wide[length - 1] <= L' ') --length;

    std::u16string_view text = as_utf16(wide, length);
    std::size_t used = 0;
    while (!text.empty() && used + 4 <= buffer.size()) {
        const DecodedCharacter decoded = decode_utf16(text);
        used += encode_utf8(decoded.character, buffer.data() + used);
        text.remove_prefix(decoded.length);
    }
    return {buffer.data(), used};
}

std::string system_error_text(std::uint32_t code) {
    char buffer[1024];
    return std::string(system_error_text(code, buffer));
}

}  // namespace qmp::os
