// The parallel frameworks of this build, by type key and in menu order.
//
// A further framework is one more line in registry.cpp.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/component_registry.h"
#include "platform/parallel/basic_parallelizer.h"

namespace qmp {

using ParallelizerFactory = ComponentFactory<BasicParallelizer>;

// Appends to the menu. A key registered twice prints "Duplicate Framework Type" and ends the program with
// exit code 1. Before main only.
void register_parallelizer(std::string key, std::unique_ptr<ParallelizerFactory> factory);

// A new framework. An unknown key is an InvalidParametersException ("Invalid Parallel Framework: " and
// the key).
std::unique_ptr<BasicParallelizer> make_parallelizer(std::string_view key);
// A Push Pool with randomization and without a thread limit.
std::unique_ptr<BasicParallelizer> make_default_parallelizer();
// In menu order, numbered from 0.
std::vector<std::string> parallelizer_display_names();
const std::vector<std::string>& parallelizer_keys();
std::unique_ptr<BasicParallelizer> make_parallelizer_by_number(std::uint64_t menu_number);

constexpr std::uint64_t largest_task_decomposition = 65536;

// The value itself. One outside 1 to 65536 is an InvalidParametersException.
std::uint64_t checked_task_decomposition(std::uint64_t tasks);
// One task for each logical core that this process may use.
std::uint64_t default_task_decomposition();

}  // namespace qmp
