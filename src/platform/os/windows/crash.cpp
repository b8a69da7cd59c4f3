#include <windows.h>
// After windows.h, on whose types it builds.
#include <dbghelp.h>

#include <atomic>
#include <csignal>

#include "platform/os/process.h"
#include "platform/os/unicode.h"

namespace qmp::os {

struct CrashContext {
    EXCEPTION_POINTERS* pointers = nullptr;
};

namespace {

CrashHandler installed_handler = nullptr;
std::atomic<bool> handling{false};

// The handler runs once; what crashes meanwhile waits for the end of the process.
void handle_once(const CrashContext* context) {
    if (handling.exchange(true)) Sleep(INFINITE);
    installed_handler(context);
}

LONG WINAPI on_unhandled_exception(EXCEPTION_POINTERS* pointers) {
    const CrashContext context{pointers};
    handle_once(&context);
    return EXCEPTION_EXECUTE_HANDLER;
}

// An exception of the language that nobody caught ends in abort, which raises no system exception.
void on_abort(int) {
    handle_once(nullptr);
}

// ASCII names suffice for dumps; anything else is converted character by character.
void widen(const char* path, wchar_t (&wide)[MAX_PATH]) {
    std::string_view text(path);
    std::size_t used = 0;
    while (!text.empty() && used + 3 <= MAX_PATH) {
        const DecodedCharacter decoded = decode_utf8(text);
        char16_t units[2];
        const std::size_t count = encode_utf16(decoded.character, units);
        for (std::size_t i = 0; i < count; ++i) wide[used++] = static_cast<wchar_t>(units[i]);
        text.remove_prefix(decoded.length);
    }
    wide[used] = L'\0';
}

}  // namespace

void install_crash_handler(CrashHandler handler) {
    installed_handler = handler;
    // Room for the handler when the crash is that the stack has run out.
    ULONG guarantee = 128 * 1024;
    SetThreadStackGuarantee(&guarantee);
    SetUnhandledExceptionFilter(on_unhandled_exception);
    std::signal(SIGABRT, on_abort);
}

DumpOutcome write_crash_dump(const char* path, const CrashContext* context) {
    wchar_t wide[MAX_PATH];
    widen(path, wide);
    const HANDLE file = CreateFileW(wide, GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return {DumpResult::cannot_create, GetLastError()};

    MINIDUMP_EXCEPTION_INFORMATION exception{};
    const bool with_exception = context != nullptr && context->pointers != nullptr;
    if (with_exception) {
        exception.ThreadId = GetCurrentThreadId();
        exception.ExceptionPointers = context->pointers;
        exception.ClientPointers = FALSE;
    }
    const BOOL written = MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), file, MiniDumpNormal,
                                           with_exception ? &exception : nullptr, nullptr, nullptr);
    // The error code of a failed dump is a result code of the system and is kept as it is.
    const DWORD error = written ? 0 : GetLastError();
    CloseHandle(file);
    if (!written) return {DumpResult::cannot_write, error};
    return {};
}

}  // namespace qmp::os
