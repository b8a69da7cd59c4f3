#include "resident.h"

#include <fstream>
#include <limits>
#include <string>

namespace bench {

void restart_resident_peak() {
    std::ofstream("/proc/self/clear_refs") << 5;
}

std::uint64_t resident_peak() {
    std::ifstream status("/proc/self/status");
    std::string name;
    while (status >> name) {
        std::uint64_t kibibytes = 0;
        if (name == "VmHWM:" && status >> kibibytes) return kibibytes * 1024;
        status.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    return 0;
}

}  // namespace bench
