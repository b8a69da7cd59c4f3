#include "multiply/fft/twiddle_table.h"

#include "multiply/fft/unit_roots.h"

namespace qmp::fft {
namespace {

// The multipliers m of a level's four groups: 4 times the bit-reversed order of 0 .. 3. With
// theta = 2 pi / (r * 2^j) they give the powers 0, 2, 1, 3 of the root of order r * 2^(j-2), the length
// that a pass of the level cuts into quarters.
constexpr std::uint64_t multipliers[4] = {0, 8, 4, 12};

constexpr std::uint64_t doubles_per_pair = 16;

// Tasks fill at least this many pairs.
constexpr std::uint64_t pairs_per_task = 4096;

void fill_pair(double* target, std::uint64_t pair, const UnitRoots& roots) {
    for (int group = 0; group < 4; ++group) {
        for (std::uint64_t i = 0; i < 2; ++i) {
            const UnitRoot root = roots(multipliers[group] / 4 * (2 * pair + i));
            target[4 * group + i] = root.cosine;
            target[4 * group + 2 + i] = root.sine;
        }
    }
}

// Every index of the lower level is an even index of the upper one, at the same angle.
void copy_pair(double* target, std::uint64_t pair, const double* upper) {
    for (std::uint64_t i = 0; i < 2; ++i) {
        const double* source = upper + (2 * pair + i) * doubles_per_pair;
        for (int column = 0; column < 8; ++column) target[2 * column + i] = source[2 * column];
    }
}

template <typename FillPair>
void fill_level(ParallelContext parallel, double* level, std::uint64_t pairs, FillPair fill) {
    const BlockCut cut = BlockCut::of(pairs, parallel.tds, pairs_per_task);
    parallel.run(0, cut.count, [&](std::uint64_t task) {
        for (std::uint64_t pair = cut.begin(task); pair < cut.end(task, pairs); ++pair) {
            fill(level + pair * doubles_per_pair, pair);
        }
    });
}

}  // namespace

TwiddleTable::TwiddleTable(std::uint32_t r, std::uint32_t k, double* memory, ParallelContext parallel)
    : memory_(memory), r_(r), k_(k) {
    for (std::uint32_t i = 0; i < 4; ++i) scales_[i] = 1.0 / static_cast<double>(r << i);
    for (std::uint32_t j = k + 1; j >= 5; --j) {
        double* level = memory_ + ((std::uint64_t{2} * r) << (j - 2));
        const std::uint64_t pairs = (std::uint64_t{r} << (j - 5));
        if (j == k + 1) {
            const UnitRoots roots(std::uint64_t{r} << (j - 2));
            fill_level(parallel, level, pairs,
                       [&](double* target, std::uint64_t pair) { fill_pair(target, pair, roots); });
        } else {
            fill_level(parallel, level, pairs,
                       [&](double* target, std::uint64_t pair) { copy_pair(target, pair, levels_[j + 1]); });
        }
        levels_[j] = level;
        scales_[64 + j] = 1.0 / static_cast<double>(std::uint64_t{r} << (j - 1));
    }
}

}  // namespace qmp::fft
