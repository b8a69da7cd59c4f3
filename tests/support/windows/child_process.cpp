#include "support/child_process.h"

#include <windows.h>

#include <cstdlib>
#include <thread>

namespace kelvara_test {
namespace {

constexpr DWORD patience_milliseconds = 60'000;
constexpr std::int64_t had_to_be_ended = -1000;

std::wstring wide(const std::string& text) {
    std::wstring result(text.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                           result.data(), static_cast<int>(result.size()));
    result.resize(static_cast<std::size_t>(length));
    return result;
}

// The tests' words hold no quotes.
std::wstring joined(const std::vector<std::string>& command) {
    std::wstring line;
    for (const std::string& word : command) line += (line.empty() ? L"\"" : L" \"") + wide(word) + L"\"";
    return line;
}

std::string read_to_end(HANDLE pipe) {
    std::string text;
    char bytes[4096];
    DWORD count = 0;
    while (ReadFile(pipe, bytes, sizeof bytes, &count, nullptr) && count > 0) text.append(bytes, count);
    return text;
}

}  // namespace

ChildEnd run_child(const std::vector<std::string>& command, const ChildSettings& settings) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE reader = nullptr, writer = nullptr;
    if (!CreatePipe(&reader, &writer, &inherited, 0)) std::abort();
    SetHandleInformation(reader, HANDLE_FLAG_INHERIT, 0);
    const HANDLE null = CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                                    OPEN_EXISTING, 0, nullptr);
    if (settings.output == ChildStream::broken_pipe) CloseHandle(reader);

    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = settings.input == ChildStream::closed ? nullptr : null;
    startup.hStdOutput = settings.output == ChildStream::closed ? nullptr : writer;
    startup.hStdError = startup.hStdOutput;
    std::wstring line = joined(command);
    const std::wstring folder = wide(settings.folder);
    PROCESS_INFORMATION child{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                        folder.empty() ? nullptr : folder.c_str(), &startup, &child)) {
        std::abort();
    }
    CloseHandle(writer);
    CloseHandle(null);

    ChildEnd end;
    std::thread collector;
    if (settings.output != ChildStream::broken_pipe)
        collector = std::thread([&] { end.output = read_to_end(reader); });
    DWORD exit_code = 0;
    const bool ended = WaitForSingleObject(child.hProcess, patience_milliseconds) == WAIT_OBJECT_0;
    if (!ended) TerminateProcess(child.hProcess, 1);
    if (collector.joinable()) {
        collector.join();
        CloseHandle(reader);
    }
    GetExitCodeProcess(child.hProcess, &exit_code);
    end.exit_code = ended ? std::int64_t{exit_code} : had_to_be_ended;
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    std::erase(end.output, '\r');
    return end;
}

}  // namespace kelvara_test
