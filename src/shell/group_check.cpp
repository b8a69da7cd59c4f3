#include "shell/group_check.h"

#include <algorithm>
#include <string>

#include "console/console.h"
#include "console/format.h"
#include "platform/processor_system.h"

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
    check_processor_groups(qmp::group_processors(qmp::processor_system()));
}

}  // namespace kelvara
