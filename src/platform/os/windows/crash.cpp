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

struct DumpRequest {
    HANDLE file;
    MINIDUMP_EXCEPTION_INFORMATION* exception;
    MINIDUMP_USER_STREAM_INFORMATION* comments;
    // The error code of a failed dump is a result code of the system and is kept as it is.
    DWORD error = 0;
};

DWORD WINAPI write_minidump(void* parameter) {
    DumpRequest& request = *static_cast<DumpRequest*>(parameter);
    const BOOL written = MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), request.file,
                                           MiniDumpNormal, request.exception, request.comments, nullptr);
    request.error = written ? 0 : GetLastError();
    return written ? 1 : 0;
}

// Whoever writes the dump is who crashes next, if anybody does.
DWORD WINAPI write_minidump_as_owner(void* parameter) {
    crashed_thread.store(GetCurrentThreadId());
    return write_minidump(parameter);
}

bool stack_ran_out(const CrashContext* context) {
    return context != nullptr && context->pointers != nullptr &&
           context->pointers->ExceptionRecord->ExceptionCode == EXCEPTION_STACK_OVERFLOW;
}

// Writing takes more stack than a thread has left whose stack has run out: then another one writes.
bool write_where_there_is_room(DumpRequest& request, const CrashContext* context) {
    DWORD written = 0;
    const HANDLE writer = stack_ran_out(context)
                              ? CreateThread(nullptr, 0, write_minidump_as_owner, &request, 0, nullptr)
                              : nullptr;
    if (writer == nullptr) return write_minidump(&request) != 0;
    WaitForSingleObject(writer, INFINITE);
    GetExitCodeThread(writer, &written);
    CloseHandle(writer);
    return written != 0;
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
    // Debuggers read the comment up to its NUL.
    char text[1024] = {};
    const std::size_t length = description.copy(text, sizeof text - 1);
    MINIDUMP_USER_STREAM comment{};
    comment.Type = CommentStreamA;
    comment.Buffer = text;
    comment.BufferSize = static_cast<ULONG>(length + 1);
    MINIDUMP_USER_STREAM_INFORMATION comments{1, &comment};
    DumpRequest request{file, with_exception ? &exception : nullptr,
                        description.empty() ? nullptr : &comments};
    const bool written = write_where_there_is_room(request, context);
    CloseHandle(file);
    if (!written) return {DumpResult::cannot_write, request.error};
    return {};
}

}  // namespace qmp::os
