// A parallel framework in a configuration: the keys "TaskDecomposition", "Framework", and the framework's own
// in the same object. A type error names the context "Parallel Framework". And in a settings record.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "config/notation.h"
#include "config/text_cursor.h"
#include "platform/parallel/basic_parallelizer.h"

namespace qmp {

constexpr std::string_view parallel_context_name = "Parallel Framework";

struct ParallelSettings {
    std::uint64_t task_decomposition = 1;
    std::unique_ptr<BasicParallelizer> framework;
};

notation::Object write_parallel_settings(std::uint64_t task_decomposition,
                                         const BasicParallelizer& framework);

// Throws for the first key, in the order of writing, that is missing or wrong: a ParseException, or an
// InvalidParametersException for a task decomposition out of range and for an unknown framework.
ParallelSettings read_parallel_settings(const notation::Object& config);

// The same as lines of a settings record: the task decomposition, the name, then the framework's own.
std::string print_parallel_settings(std::uint64_t task_decomposition, const BasicParallelizer& framework);
ParallelSettings load_parallel_settings(TextCursor& cursor);

// A flag of a framework's own: "true" or "false", or an integer, of which all but 0 mean true.
bool read_parallel_flag(const notation::Object& config, std::string_view key);

}  // namespace qmp
