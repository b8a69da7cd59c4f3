#include "platform/os/windows/wide_path.h"

#include <windows.h>

namespace qmp::os {

std::wstring wide_path(const std::string& path) {
    const int length = static_cast<int>(path.size());
    if (length == 0) return {};
    const int units = MultiByteToWideChar(CP_UTF8, 0, path.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(units), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, path.data(), length, wide.data(), units);
    return wide;
}

}  // namespace qmp::os
