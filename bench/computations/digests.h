// Digests of a digit file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// SHA-256 of the file's first bytes up to each of the ascending ends, and of the whole file last.
std::vector<std::string> file_digests(const std::string& path, const std::vector<std::uint64_t>& ends);

}  // namespace bench
