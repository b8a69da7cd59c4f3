// What the sources of Transform share.
#pragma once

#include <algorithm>
#include <atomic>

#include "multiply/vst/transform.h"

namespace qmp::vst {

// A few units at a time, taken by whoever is free: a task that is held up does not hold up the others. Where
// no processor is idle, further tasks would only get in each other's way.
template <typename Body>
void Transform::for_units(std::uint64_t units, Body body) const {
    const std::uint64_t runners = std::min(tasks_, units);
    if (runners <= 1 || context_.parallelizer->idle_processors() == 0) {
        body(workspaces_, std::uint64_t{0}, units);
        return;
    }
    constexpr std::uint64_t takes_of_runner = 8;
    const std::uint64_t step = std::max<std::uint64_t>(units / (takes_of_runner * runners), 1);
    std::atomic<std::uint64_t> next{0};
    context_.run(0, runners, [&](std::uint64_t i) {
        for (;;) {
            const std::uint64_t begin = next.fetch_add(step, std::memory_order_relaxed);
            if (begin >= units) return;
            body(workspaces_ + i * plan_.workspace_words(), begin, std::min(begin + step, units));
        }
    });
}

inline const PrimeConstants& Transform::constants(std::uint32_t prime) const {
    return prime_constants(plan_.multiplier(), prime);
}

}  // namespace qmp::vst
