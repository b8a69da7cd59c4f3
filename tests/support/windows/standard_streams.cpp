#include "support/standard_streams.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>

namespace kelvara_test {
namespace {

HANDLE make_temporary_file(std::string& path) {
    char folder[MAX_PATH], name[MAX_PATH];
    if (GetTempPathA(MAX_PATH, folder) == 0 || GetTempFileNameA(folder, "kel", 0, name) == 0) std::abort();
    path = name;
    const HANDLE file = CreateFileA(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) std::abort();
    return file;
}

HANDLE as_handle(std::intptr_t value) {
    return reinterpret_cast<HANDLE>(value);
}

std::intptr_t as_integer(HANDLE handle) {
    return reinterpret_cast<std::intptr_t>(handle);
}

}  // namespace

CapturedOutput::CapturedOutput() {
    std::fflush(stdout);
    const HANDLE file = make_temporary_file(path_);
    saved_ = as_integer(GetStdHandle(STD_OUTPUT_HANDLE));
    SetStdHandle(STD_OUTPUT_HANDLE, file);
    file_ = as_integer(file);
}

CapturedOutput::~CapturedOutput() {
    restore();
    DeleteFileA(path_.c_str());
}

void CapturedOutput::restore() {
    if (saved_ == -1) return;
    SetStdHandle(STD_OUTPUT_HANDLE, as_handle(saved_));
    saved_ = -1;
}

std::string CapturedOutput::finish() {
    restore();
    std::string text;
    const HANDLE file = as_handle(file_);
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    char bytes[4096];
    DWORD count = 0;
    while (ReadFile(file, bytes, sizeof bytes, &count, nullptr) && count > 0) text.append(bytes, count);
    CloseHandle(file);
    return text;
}

FedInput::FedInput(std::string_view content) {
    const HANDLE file = make_temporary_file(path_);
    DWORD written = 0;
    if (!WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr)) std::abort();
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    saved_ = as_integer(GetStdHandle(STD_INPUT_HANDLE));
    SetStdHandle(STD_INPUT_HANDLE, file);
}

FedInput::~FedInput() {
    CloseHandle(GetStdHandle(STD_INPUT_HANDLE));
    SetStdHandle(STD_INPUT_HANDLE, as_handle(saved_));
    DeleteFileA(path_.c_str());
}

}  // namespace kelvara_test
