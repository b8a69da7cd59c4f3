#include "sessions/utilization.h"

#include <algorithm>

#include "console/console.h"
#include "console/format.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

// User time, and kernel time where it can be told, in percent.
struct Share {
    std::string user;
    std::string kernel;

    Share(double user_percent, double kernel_percent) : user(percent(user_percent, 8)) {
        if (kernel_percent >= 0.0) kernel = percent(kernel_percent, 6);
    }

    static std::string percent(double value, std::size_t width) {
        const std::string text = console::format_fixed(value, 2);
        return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
    }
};

constexpr const char* too_fast = "Too Fast to Measure";

Share whole(const Utilization& utilization) {
    return {utilization.user_percent, utilization.kernel_percent};
}

Share per_core(const Utilization& utilization) {
    const double cores = static_cast<double>(utilization.cores);
    return {utilization.user_percent / cores, utilization.kernel_percent / cores};
}

void print_share(const Share& share) {
    console::write(share.user, 'Y');
    console::write(" %");
    if (!share.kernel.empty()) {
        console::write("  +  ", 'w');
        console::write(share.kernel, 'Y');
        console::write(" % kernel overhead");
    }
    console::println("");
    console::reset_color();
}

std::string to_text(const Share& share) {
    return share.user + " %" + (share.kernel.empty() ? "" : "  +  " + share.kernel + " % kernel overhead");
}

}  // namespace

Utilization Utilization::between(const qmp::CpuTimePoint& start, const qmp::CpuTimePoint& end,
                                 std::uint64_t cores) {
    Utilization result;
    result.cores = std::max<std::uint64_t>(cores, 1);
    const double wall = qmp::seconds_between(end.wall, start.wall);
    if (wall <= 0.0) return result;
    result.user_percent = (end.user - start.user) * 100.0 / wall;
    result.kernel_percent = (end.kernel - start.kernel) * 100.0 / wall;
    result.measured = result.user_percent > 0.0;
    return result;
}

void print_utilization(const Utilization& utilization) {
    constexpr const char* utilization_label = "CPU Utilization:        ";
    constexpr const char* efficiency_label = "Multi-core Efficiency:  ";
    if (!utilization.measured) {
        console::println(std::string(utilization_label) + too_fast);
        console::println(std::string(efficiency_label) + too_fast);
        return;
    }
    console::write(utilization_label, 'w');
    print_share(whole(utilization));
    console::write(efficiency_label, 'w');
    print_share(per_core(utilization));
}

std::string utilization_text(const Utilization& utilization) {
    return utilization.measured ? to_text(whole(utilization)) : too_fast;
}

std::string efficiency_text(const Utilization& utilization) {
    return utilization.measured ? to_text(per_core(utilization)) : too_fast;
}

}  // namespace kelvara
