#include "platform/os/file.h"

#include <windows.h>

#include <algorithm>
#include <limits>

#include "platform/os/windows/wide_path.h"

namespace qmp::os {
namespace {

HANDLE handle_of(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

ErrorCode last_error() {
    const DWORD code = GetLastError();
    // A failure without a code is still a failure.
    return code != 0 ? code : io_device_failure;
}

}  // namespace

ErrorCode File::create(const std::string& path, Durable durable) {
    close();
    // Every write goes through either way: nothing is left for close() to wait for.
    durable_ = durable;
    const HANDLE handle = CreateFileW(wide_path(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                      OPEN_ALWAYS, FILE_FLAG_WRITE_THROUGH, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return last_error();
    const LARGE_INTEGER start{};
    if (!SetFilePointerEx(handle, start, nullptr, FILE_BEGIN) || !SetEndOfFile(handle)) {
        const ErrorCode error = last_error();
        CloseHandle(handle);
        return error;
    }
    handle_ = reinterpret_cast<std::intptr_t>(handle);
    return no_error;
}

ErrorCode File::open(const std::string& path) {
    close();
    const HANDLE handle = CreateFileW(wide_path(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return last_error();
    handle_ = reinterpret_cast<std::intptr_t>(handle);
    return no_error;
}

ErrorCode File::close() {
    if (!is_open()) return no_error;
    const HANDLE handle = handle_of(handle_);
    handle_ = closed;
    return CloseHandle(handle) ? no_error : last_error();
}

Transfer File::read(void* buffer, std::uint64_t bytes) {
    Transfer result;
    while (result.bytes < bytes) {
        const DWORD count = static_cast<DWORD>(std::min(bytes - result.bytes, largest_transfer));
        DWORD moved = 0;
        if (!ReadFile(handle_of(handle_), static_cast<char*>(buffer) + result.bytes, count, &moved,
                      nullptr)) {
            result.error = last_error();
        }
        result.bytes += moved;
        if (result.error != no_error || moved == 0) break;
    }
    return result;
}

Transfer File::write(const void* buffer, std::uint64_t bytes) {
    Transfer result;
    while (result.bytes < bytes) {
        const DWORD count = static_cast<DWORD>(std::min(bytes - result.bytes, largest_transfer));
        DWORD moved = 0;
        if (!WriteFile(handle_of(handle_), static_cast<const char*>(buffer) + result.bytes, count, &moved,
                       nullptr)) {
            result.error = last_error();
        } else if (moved == 0) {
            result.error = disk_full;
        }
        result.bytes += moved;
        if (result.error != no_error) break;
    }
    return result;
}

ErrorCode File::seek(std::uint64_t offset) {
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<LONGLONG>::max())) return invalid_parameter;
    LARGE_INTEGER distance;
    distance.QuadPart = static_cast<LONGLONG>(offset);
    return SetFilePointerEx(handle_of(handle_), distance, nullptr, FILE_BEGIN) ? no_error : last_error();
}

ErrorCode File::size(std::uint64_t& bytes) const {
    LARGE_INTEGER size;
    if (!GetFileSizeEx(handle_of(handle_), &size)) return last_error();
    bytes = static_cast<std::uint64_t>(size.QuadPart);
    return no_error;
}

ErrorCode file_size(const std::string& path, std::uint64_t& bytes) {
    WIN32_FIND_DATAW data;
    const HANDLE search = FindFirstFileW(wide_path(path).c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return last_error();
    bytes = (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
    return FindClose(search) ? no_error : last_error();
}

ErrorCode remove_file(const std::string& path) {
    return DeleteFileW(wide_path(path).c_str()) ? no_error : last_error();
}

ErrorCode rename_file(const std::string& from, const std::string& to) {
    return MoveFileW(wide_path(from).c_str(), wide_path(to).c_str()) ? no_error : last_error();
}

bool directory_exists(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(wide_path(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

ErrorCode create_directory(const std::string& path) {
    if (CreateDirectoryW(wide_path(path).c_str(), nullptr)) return no_error;
    const ErrorCode error = last_error();
    return directory_exists(path) ? no_error : error;
}

}  // namespace qmp::os
