// From a series to a number: the driver of the constants that are one series, and its parts for those that
// go on differently.
//
// The sum over the terms 1 .. N is P/Q; the term of index 0, which no range contains, is the word w over
// the word d: the value is (w Q +- P) / (d Q).
#pragma once

#include <cstdint>

#include "numbers/compute_context.h"
#include "series/psr_evaluate.h"

namespace qmp {

// A summed series as a fraction, in the buffers that stay of its evaluation.
struct SeriesFraction {
    PsrMemory memory;
    BigFloat numerator;    // w Q +- P
    BigFloat denominator;  // d Q
};

// Sums a series to p words, as the step "Summing Series...": both parts are truncated to p + 2 words.
// `factor` is the plan's. `subtract` tells that the terms behind index 0 are negative as a whole. A word c
// that multiplies these terms makes the numerator w Q +- c P.
SeriesFraction sum_fraction(const BSS_P2B2_BBP& series, const ComputeContext& context, std::uint64_t p,
                            double factor, Word w, Word d, bool subtract, Word c = 1);
SeriesFraction sum_fraction(const BSS_P2B3_Type0& series, const ComputeContext& context, std::uint64_t p,
                            double factor, Word w, Word d, bool subtract);

// The series' value to p words, times `scale`. In an alternating series the first summed term is negative.
OwnedBigFloat SumSeries(const BSS_P2B2_BBP& series, const ComputeContext& context, std::uint64_t p, Word w,
                        Word d, std::int64_t scale);
OwnedBigFloat SumSeries(const BSS_P2B3_Type0& series, const ComputeContext& context, std::uint64_t p, Word w,
                        Word d, std::int64_t scale);

// Moves a number into a buffer of its own at the lowest free place of the region, so that what its
// computation has released around it becomes one piece.
OwnedBigFloat relocate(const ComputeContext& context, OwnedBigFloat number);

// Bytes that SumSeries takes at most for p words, and its longest product in words. With `factor` other
// than 1 the same for a fraction with that plan and its division.
std::uint64_t memory_estimate(const BinarySplittingSeries& series, std::uint64_t p, std::uint64_t tasks,
                              double factor = 1.0);
std::uint64_t sum_largest_product(const BinarySplittingSeries& series, std::uint64_t p, double factor = 1.0);

// The Newton scratch, in words, that the estimates count for a division.
inline std::uint64_t estimated_division_words(std::uint64_t s) {
    return s < 10 ? 2 * s + 9 : s + 10 + ((s + 1) & ~std::uint64_t{1});
}
// The words beyond the working precision that the estimates are made for.
constexpr std::uint64_t estimate_spare_words = 100;

}  // namespace qmp
