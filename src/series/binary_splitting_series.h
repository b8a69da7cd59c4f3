// A series that is summed exactly by binary splitting: how large its partial sums are, how to sum a short
// range, and whether its terms alternate.
//
// A range (a, b] holds the terms of index a + 1 to b; index 0 is never inside a range. Series objects hold
// no state between calls and are shared by all tasks.
#pragma once

#include <cstdint>

#include "series/series_cost.h"

namespace qmp {

struct PsrPlan;

// Buffer sizes for the evaluation of a plan from one block on.
struct PlanSizes {
    std::uint64_t scratch_bytes;  // of the multiplication
    std::uint64_t running_words;  // a truncated running value
    std::uint64_t exact_words;    // an exact result of one block
};

class BinarySplittingSeries {
  public:
    bool alternating;
    std::uint64_t size_margin;  // words added to every size that comes from the cost model
    std::uint64_t leaf_size;    // a range with fewer terms is a leaf
    // Terms of the longest leaf: leaf_size - 1, or more where the leaves' code is faster than further splits.
    // Sums are the same integers.
    std::uint64_t longest_leaf;

    virtual ~BinarySplittingSeries() = default;

    // LimitExceededException ("AlgorithmTableB::iPsize()") when no multiplication reaches the length.
    virtual PlanSizes SizesForPlan(const PsrPlan& plan, std::uint64_t first, std::uint64_t tasks) const;
    // How many terms a precision of p words takes.
    virtual std::uint64_t TermsForPrecision(std::uint64_t p) const = 0;
    // The words that the terms from `index` on still contribute to p words. StringException
    // ("Required to use ASR.") for the series that do not provide it.
    virtual std::uint64_t PrecisionAtIndex(double index, std::uint64_t p) const;
    // ln Q(0, x), for the splits.
    virtual double SizeAtIndex(double x) const = 0;
    // The same for the plans.
    virtual double SizeAtIndexPSR(const double& x) const = 0;
    // Natural logarithm of the factor by which the terms shrink from a to b.
    virtual double DecayBetween(double a, double b) const = 0;

    // Where a recursion splits a range: in the middle, by cost when it is long.
    std::uint64_t split(std::uint64_t a, std::uint64_t b) const;
    // Where a block or a parallel recursion splits: by cost, whatever the length.
    std::uint64_t cost_split(std::uint64_t a, std::uint64_t b) const;
    // The sign rule: the right half (m, b] is subtracted when the left half (a, m] holds an odd number of
    // terms of an alternating series.
    bool subtracts(std::uint64_t a, std::uint64_t m) const { return alternating && ((m ^ a) & 1); }

  protected:
    BinarySplittingSeries(bool alternates, std::uint64_t margin, std::uint64_t leaf)
        : alternating(alternates), size_margin(margin), leaf_size(leaf), longest_leaf(leaf - 1) {}
};

// The split at which both halves cost about the same: the largest products, which are formed last, then
// have operands of equal size. Lies above the middle, since terms grow with their index.
std::uint64_t find_split(const BinarySplittingSeries& series, std::uint64_t a, std::uint64_t b);

// Ranges with more terms than this are split by cost.
constexpr std::uint64_t split_by_cost_above = 100;

// A series whose sizes follow a SeriesCost.
class CostedSeries : public BinarySplittingSeries {
  public:
    SeriesCost cost;      // of the splits
    SeriesCost psr_cost;  // of the term count and of the plans

    std::uint64_t TermsForPrecision(std::uint64_t p) const override;
    std::uint64_t PrecisionAtIndex(double index, std::uint64_t p) const override;
    double SizeAtIndex(double x) const override;
    double SizeAtIndexPSR(const double& x) const override;
    double DecayBetween(double a, double b) const override { return (b - a) * psr_cost.log_ratio; }

  protected:
    CostedSeries(bool alternates, std::uint64_t margin, std::uint64_t leaf, const SeriesCost& model)
        : BinarySplittingSeries(alternates, margin, leaf), cost(model), psr_cost(model) {}
};

}  // namespace qmp
