#include "multiply/instruction_levels.h"

#include <atomic>
#include <string>

#include "errors/exception.h"
#include "platform/processor_features.h"

namespace qmp {
namespace {

struct Entry {
    const char* name;
    bool (*supported)(const ProcessorFeatures&);
};

// In the order of InstructionLevel. A level needs all that its files are compiled for
// (cmake/KernelFlags.cmake).
constexpr Entry entries[instruction_level_count] = {
    {"AVX-512",
     [](const ProcessorFeatures& f) {
         return f.os_avx512 && f.avx512f && f.avx512dq && f.avx512bw && f.avx512vl && f.avx2 && f.fma3 &&
                f.bmi2 && f.adx;
     }},
    {"AVX2", [](const ProcessorFeatures& f) { return f.os_avx && f.avx2 && f.fma3 && f.bmi1 && f.bmi2; }},
    {"FMA4", [](const ProcessorFeatures& f) { return f.os_avx && f.avx && f.fma4 && f.xop; }},
    {"SSE2", [](const ProcessorFeatures&) { return true; }},
    {"scalar", [](const ProcessorFeatures&) { return true; }},
};

const Entry& entry(InstructionLevel level) {
    return entries[static_cast<std::size_t>(level)];
}

InstructionLevel best_level() {
    std::size_t i = 0;
    while (!supported(static_cast<InstructionLevel>(i))) ++i;
    return static_cast<InstructionLevel>(i);
}

std::atomic<InstructionLevel>& chosen() {
    static std::atomic<InstructionLevel> level = best_level();
    return level;
}

}  // namespace

const char* name_of(InstructionLevel level) {
    return entry(level).name;
}

bool supported(InstructionLevel level) {
    return entry(level).supported(processor_features());
}

InstructionLevel current_level() {
    return chosen().load(std::memory_order_relaxed);
}

void force_level(std::string_view name) {
    if (name.empty()) {
        chosen() = best_level();
        return;
    }
    for (std::size_t i = 0; i < instruction_level_count; ++i) {
        const auto level = static_cast<InstructionLevel>(i);
        if (name != name_of(level)) continue;
        if (!supported(level)) {
            throw InvalidParametersException("qmp::force_level()",
                                             "This processor does not run " + std::string(name) + ".");
        }
        chosen() = level;
        return;
    }
    throw InvalidParametersException("qmp::force_level()", "No such level: " + std::string(name));
}

}  // namespace qmp
