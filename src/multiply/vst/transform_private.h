// What the sources of Transform share.
#pragma once

#include <algorithm>

#include "multiply/vst/transform.h"

namespace qmp::vst {

template <typename Body>
void Transform::for_units(std::uint64_t units, Body body) const {
    const BlockCut cut = BlockCut::of(units, tasks_, 1);
    if (cut.count <= 1) {
        body(workspaces_, std::uint64_t{0}, units);
        return;
    }
    context_.run(0, cut.count, [&](std::uint64_t i) {
        body(workspaces_ + i * plan_.workspace_words(), cut.begin(i), cut.end(i, units));
    });
}

inline const PrimeConstants& Transform::constants(std::uint32_t prime) const {
    return prime_constants(plan_.multiplier(), prime);
}

}  // namespace qmp::vst
