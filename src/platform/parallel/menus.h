// The menus in which the user picks a parallel framework and the number of tasks.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/parallel/basic_parallelizer.h"

namespace qmp {

// "Select a Parallel Framework:" and a new framework of the one chosen.
std::unique_ptr<BasicParallelizer> select_parallelizer();

// "Target Task Decomposition" and an answer from 1 to 65536.
std::uint64_t ask_task_decomposition();

// "Parallelization Mode:", repeated until the user is done.
void edit_parallelization(std::uint64_t& task_decomposition, std::unique_ptr<BasicParallelizer>& framework);

}  // namespace qmp
