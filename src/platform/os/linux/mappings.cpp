#include "platform/os/linux/mappings.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace qmp::os {
namespace {

// The number of kB behind "Name:", or nothing to be read.
bool read_kibibytes(const std::string& line, std::string_view name, std::uint64_t& bytes) {
    if (!line.starts_with(name)) return false;
    unsigned long long kibibytes = 0;
    if (std::sscanf(line.c_str() + name.size(), "%llu", &kibibytes) != 1) return false;
    bytes = std::uint64_t{kibibytes} * 1024;
    return true;
}

}  // namespace

std::uint64_t huge_page_bytes(std::istream& smaps, std::uint64_t begin, std::uint64_t bytes) {
    std::uint64_t sum = 0;
    bool inside = false;
    std::string line;
    while (std::getline(smaps, line)) {
        unsigned long long first = 0, end = 0;
        char space = 0;
        // A mapping's own line begins with its addresses; its properties begin with their names.
        if (std::sscanf(line.c_str(), "%llx-%llx%c", &first, &end, &space) == 3 && space == ' ') {
            if (first >= begin + bytes) break;  // they are in ascending order
            inside = first >= begin && end <= begin + bytes;
            continue;
        }
        std::uint64_t huge = 0;
        if (inside && read_kibibytes(line, "AnonHugePages:", huge)) sum += huge;
    }
    return sum;
}

std::uint64_t huge_page_size(std::istream& meminfo) {
    std::string line;
    std::uint64_t bytes = 0;
    while (std::getline(meminfo, line)) {
        if (read_kibibytes(line, "Hugepagesize:", bytes)) return bytes;
    }
    return 0;
}

}  // namespace qmp::os
