// UTF-8 paths as the wide strings that the system's calls take.
#pragma once

#include <string>

namespace qmp::os {

// Malformed parts become the replacement character, which names no file.
std::wstring wide_path(const std::string& path);

}  // namespace qmp::os
