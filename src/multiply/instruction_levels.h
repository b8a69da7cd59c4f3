// The instruction-set levels that kernels are written for, in one list, and which one runs.
//
// The best level that the processor and the system support is chosen once. Products are exact integers, so
// every level gives the same words; only tests and benchmarks have reason to choose another. A family of
// kernels has one table per level; where it has none for the current level it takes that of the next lower.
#pragma once

#include <cstddef>
#include <string_view>

namespace qmp {

// Best first.
enum class InstructionLevel : std::size_t { avx512, avx2, fma4, sse2, scalar };
constexpr std::size_t instruction_level_count = 5;

const char* name_of(InstructionLevel level);
// Whether this machine runs it.
bool supported(InstructionLevel level);

InstructionLevel current_level();

// Makes a level the one that runs; not while products are under way. InvalidParametersException when
// there is no such level or this machine does not run it. An empty name goes back to the best one.
void force_level(std::string_view name);

}  // namespace qmp
