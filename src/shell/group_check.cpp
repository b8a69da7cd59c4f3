#include "shell/group_check.h"

#include <algorithm>
#include <string>
#include <vector>

#include "console/console.h"
#include "console/format.h"
#include "platform/os/threads.h"

namespace kelvara {

namespace console = qmp::console;

void check_processor_groups(std::span<const std::uint32_t> processors) {
    const auto differs = [&](std::uint32_t count) { return count != processors.front(); };
    if (processors.size() < 2 || std::none_of(processors.begin(), processors.end(), differs)) return;

    console::println("Warning: Imbalanced processor groups detected.", 'R');
    console::println("This may lead to suboptimal performance.");
    for (std::size_t group = 0; group < processors.size(); ++group) {
        console::write("    Group ");
        console::print_right(2, console::format_int(group));
        console::write(":  ");
        console::print_right(2, console::format_int(processors[group]));
        console::println(" cores");
    }
    console::println("", 'w');
    console::pause();
}

void check_processor_groups() {
    std::vector<std::uint32_t> processors(qmp::os::active_processor_groups());
    for (std::uint32_t group = 0; group < processors.size(); ++group) {
        processors[group] = qmp::os::active_processors(group);
    }
    check_processor_groups(processors);
}

}  // namespace kelvara
