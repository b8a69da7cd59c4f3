#include "platform/topology.h"

#include <algorithm>
#include <numeric>

#include "console/console.h"
#include "console/format.h"

namespace qmp {
namespace {

[[noreturn]] void end_over(std::string_view source, os::ErrorCode error) {
    console::fatal_error("Fatal Error: " + std::string(source) + " failed: " + std::to_string(error));
}

// The label, then the list behind it, on lines of at most 60 columns.
void print_cores(std::string_view label, std::span<const std::uint64_t> cores) {
    constexpr std::size_t line_columns = 60;
    std::string line(label);
    std::string_view rest;
    const std::string ranges = number_ranges(cores);
    for (rest = ranges; line.size() + rest.size() > line_columns;) {
        // Lines end behind the comma of the last range that fits.
        const std::size_t comma = rest.substr(0, line_columns - line.size()).rfind(',');
        if (comma == std::string_view::npos) break;
        line += rest.substr(0, comma + 1);
        console::println(line);
        line.assign(label.size(), ' ');
        rest.remove_prefix(comma + 2);
    }
    console::println(line + std::string(rest));
}

NumaNode read_node(std::uint32_t node, bool only_node, ProcessorSystem& system, const CoreTable& cores) {
    os::GroupAffinity affinity;
    const os::ErrorCode error = system.numa_node_affinity(node, affinity);
    if (error == os::call_not_implemented && only_node) return whole_machine_node(cores);
    if (error != os::no_error) end_over(os::numa_node_affinity_source, error);
    return numa_node(cores, affinity);
}

}  // namespace

CoreTable::CoreTable(std::span<const std::uint32_t> counts) {
    for (std::size_t group = 0; group < counts.size(); ++group) {
        groups_.emplace_back(affinities_.size(), counts[group]);
        for (std::uint32_t processor = 0; processor < counts[group]; ++processor) {
            affinities_.push_back({static_cast<std::uint16_t>(group), os::ProcessorMask::of(processor)});
        }
    }
}

const os::GroupAffinity* CoreTable::affinity(std::uint64_t core) const {
    return core < affinities_.size() ? &affinities_[core] : nullptr;
}

std::optional<std::uint64_t> CoreTable::core(std::uint16_t group, std::uint32_t processor) const {
    if (group >= groups_.size() || processor >= groups_[group].second) return std::nullopt;
    return groups_[group].first + processor;
}

std::optional<std::uint64_t> CoreTable::core(const os::GroupAffinity& single) const {
    const std::vector<std::uint32_t> processors = single.mask.processors();
    if (processors.size() != 1) return std::nullopt;
    return core(single.group, processors.front());
}

NumaNode numa_node(const CoreTable& cores, const os::GroupAffinity& affinity) {
    NumaNode node;
    node.affinity = affinity;
    for (const std::uint32_t processor : affinity.mask.processors()) {
        if (const auto core = cores.core(affinity.group, processor)) {
            node.cores.push_back(*core);
        } else {
            ++node.skipped;
        }
    }
    return node;
}

NumaNode whole_machine_node(const CoreTable& cores) {
    NumaNode node;
    node.cores.resize(cores.size());
    std::iota(node.cores.begin(), node.cores.end(), std::uint64_t{0});
    if (cores.size() == 0) return node;
    node.affinity.group = cores.affinity(0)->group;
    for (std::uint32_t processor = 0; cores.core(node.affinity.group, processor); ++processor) {
        node.affinity.mask.insert(processor);
    }
    return node;
}

const NumaNode* NumaTable::find(std::uint64_t node) const {
    return node < nodes_.size() ? &nodes_[node] : nullptr;
}

CoreTable parse_cores(ProcessorSystem& system) {
    console::println("Parsing Core -> Handle Mappings...");
    std::vector<std::uint32_t> counts(system.active_processor_groups());
    for (std::uint32_t group = 0; group < counts.size(); ++group) {
        counts[group] = system.active_processors(group);
    }
    CoreTable cores(counts);
    print_cores("    Cores:  ", whole_machine_node(cores).cores);
    return cores;
}

NumaTable parse_numa_nodes(ProcessorSystem& system, const CoreTable& cores) {
    console::println("Parsing NUMA -> Core Mappings...");
    std::uint32_t highest = 0;
    const os::ErrorCode error = system.highest_numa_node(highest);
    if (error != os::no_error) end_over(os::highest_numa_node_source, error);

    std::vector<NumaNode> nodes;
    for (std::uint64_t number = 0; number <= highest; ++number) {
        nodes.push_back(read_node(static_cast<std::uint32_t>(number), highest == 0, system, cores));
        const NumaNode& node = nodes.back();
        for (std::uint64_t i = 0; i < node.skipped; ++i) {
            console::print_warning("Warning: Skipping invalid KAFFINITY mask.");
        }
        const std::string text = console::format_int(number);
        const std::string label = "    Node " + std::string(text.size() < 2, ' ') + text + ":  ";
        print_cores(label, node.cores);
    }
    return NumaTable(std::move(nodes));
}

const CoreTable& core_table() {
    static const CoreTable table = parse_cores(processor_system());
    return table;
}

const NumaTable& numa_table() {
    static const NumaTable table = parse_numa_nodes(processor_system(), core_table());
    return table;
}

bool bind_to_core(std::uint64_t core, const CoreTable& cores, ProcessorSystem& system) {
    const os::GroupAffinity* const affinity = cores.affinity(core);
    return affinity != nullptr && system.set_thread_group_affinity(*affinity);
}

bool bind_to_numa_node(std::uint64_t node, const NumaTable& nodes, ProcessorSystem& system) {
    const NumaNode* const found = nodes.find(node);
    return found != nullptr && system.set_thread_group_affinity(found->affinity);
}

bool bind_to_core(std::uint64_t core) {
    return bind_to_core(core, core_table(), processor_system());
}

bool bind_to_numa_node(std::uint64_t node) {
    return bind_to_numa_node(node, numa_table(), processor_system());
}

std::string number_ranges(std::span<const std::uint64_t> numbers) {
    if (numbers.empty()) return "None";
    std::string text;
    for (std::size_t i = 0; i < numbers.size();) {
        std::size_t last = i;
        while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
        if (!text.empty()) text += ", ";
        text += std::to_string(numbers[i]);
        if (last > i) text += "-" + std::to_string(numbers[last]);
        i = last + 1;
    }
    return text;
}

}  // namespace qmp
