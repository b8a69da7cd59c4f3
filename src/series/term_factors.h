// What the terms of a series are products of, as far as it is known by formula.
#pragma once

#include <cstdint>
#include <vector>

namespace qmp {

// (slope k + offset)^power, positive for every index k >= 1; slope 0 for a constant.
struct TermFactor {
    std::uint64_t slope;
    std::int64_t offset;
    unsigned power = 1;
};

// R(k) and Q(k) of a P, Q, R series, up to factors that are left out.
struct TermFactors {
    std::vector<TermFactor> R;
    std::vector<TermFactor> Q;
};

}  // namespace qmp
