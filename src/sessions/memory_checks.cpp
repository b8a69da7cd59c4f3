#include "sessions/memory_checks.h"

#include <algorithm>

#include "console/console.h"
#include "platform/os/memory.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

void complain(const char* text) {
    console::println(text, 'R');
    console::reset_color();
}

}  // namespace

bool fits_address_space(std::uint64_t bytes) {
    if (bytes < std::uint64_t{1} << 63) return true;
    complain("        Cannot Start: Insufficient Address Space");
    return false;
}

PhysicalMemory physical_memory() {
    constexpr std::uint64_t largest_figure = 0x6ffffffffffffff9;
    return {qmp::os::total_physical_memory(), std::min(qmp::os::available_physical_memory(), largest_figure)};
}

void warn_of_physical_memory(std::uint64_t bytes, const PhysicalMemory& memory) {
    if (memory.total != 0 && bytes > memory.total) {
        complain("        Warning: There is insufficient physical memory.");
    } else if (memory.available != 0 && bytes > memory.available) {
        complain("        Warning: There is insufficient available physical memory.");
    }
}

}  // namespace kelvara
