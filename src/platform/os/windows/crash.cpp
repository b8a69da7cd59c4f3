#include <windows.h>
// After windows.h, on whose types it builds.
#include <dbghelp.h>

#include <atomic>
#include <csignal>

#include "platform/os/crash.h"
#include "platform/os/unicode.h"

namespace qmp::os {

struct CrashContext {
    EXCEPTION_POINTERS* pointers = nullptr;
};

namespace {

CrashHandler installed_handler = nullptr;
// The thread that crashed first; 0 while none has.
std::atomic<DWORD> crashed_thread{0};

// The handler runs once. Other threads that crash meanwhile wait for the end of the process; the thread
// that crashes in the handler itself ends it.
void handle_once(const CrashContext* context, UINT exit_code) {
    const DWORD self = GetCurrentThreadId();
    DWORD owner = 0;
    if (!crashed_thread.compare_exchange_strong(owner, self)) {
        if (owner != self) Sleep(INFINITE);
        TerminateProcess(GetCurrentProcess(), exit_code);
    }
    installed_handler(context);
}

LONG WINAPI on_unhandled_exception(EXCEPTION_POINTERS* pointers) {
    const CrashContext context{pointers};
    handle_once(&context, pointers->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

// What a program of this system's C library ends with when it aborts.
constexpr int exit_code_of_abort = 3;

// An exception of the language that nobody caught ends in abort, which raises no system exception.
void on_abort(int) {
    handle_once(nullptr, exit_code_of_abort);
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

DumpOutcome write_crash_dump(const char* path, std::string_view description, const CrashContext* context) {
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
    MINIDUMP_USER_STREAM comment{};
    comment.Type = CommentStreamA;
    comment.Buffer = const_cast<char*>(description.data());
    comment.BufferSize = static_cast<ULONG>(description.size());
    MINIDUMP_USER_STREAM_INFORMATION comments{1, &comment};
    const BOOL written = MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), file, MiniDumpNormal,
                                           with_exception ? &exception : nullptr,
                                           description.empty() ? nullptr : &comments, nullptr);
    // The error code of a failed dump is a result code of the system and is kept as it is.
    const DWORD error = written ? 0 : GetLastError();
    CloseHandle(file);
    if (!written) return {DumpResult::cannot_write, error};
    return {};
}

}  // namespace qmp::os
