// Binary splitting in memory: a range is halved again and again, the halves are summed into integers, and
// these are merged with large products.
//
// The engine is the same for every family of series. A family is a class derived from
// BinarySplittingSeries with
//   output_count, buffer_count   its outputs, and these plus the temporaries of its merges
//   Buffers                      std::array<ExactFloat, buffer_count>
//   split, cost_split            where it splits, if not as its base does
//   leaf(context, out, a, b)     a range of up to longest_leaf terms
//   merge(context, whole, right, subtract)
//   cancel(context, factors, left, right)   if merges can take factors out
// Every buffer is the caller's and nothing is allocated in the recursion: the right half of a serial split
// is summed in the space above the left half's results, the halves of a parallel split share buffers and
// scratch between them. BSR_sizes() tells how much of both a range needs. Results do not depend on the
// task count. Only BSR_block touches progress; the recursions below it may run on any thread.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "console/format.h"
#include "console/progress.h"
#include "multiply/multiply_context.h"
#include "numbers/exact_float.h"
#include "radix/digit_counts.h"
#include "series/binary_splitting_series.h"
#include "series/common_factors.h"
#include "series/series_constants.h"
#include "series/series_sizes.h"

namespace qmp {

// A range with fewer terms is never split into parallel halves.
constexpr std::uint64_t bsr_parallel_terms = 1000;

// Colours of the label parts and of the sizes in them.
constexpr console::Colour label_colour = 'G';
constexpr console::Colour label_size_colour = 'Y';

namespace bsr {

// The part of each buffer above the results that `left` holds at their start.
template <typename Series>
typename Series::Buffers above(const typename Series::Buffers& left) {
    std::uint64_t used = 0;
    for (std::size_t i = 0; i < Series::output_count; i++) {
        used = std::max(used, static_cast<std::uint64_t>(left[i].T - left[i].base) + left[i].L);
    }
    typename Series::Buffers right;
    for (std::size_t i = 0; i < Series::buffer_count; i++) {
        const std::uint64_t offset = std::min(used, left[i].AL);
        right[i] = ExactFloat(left[i].base + offset, left[i].AL - offset);
    }
    return right;
}

// The two halves of each buffer, whole groups of eight words.
template <typename Series>
struct Halves {
    typename Series::Buffers left;
    typename Series::Buffers right;

    explicit Halves(const typename Series::Buffers& whole) {
        for (std::size_t i = 0; i < Series::buffer_count; i++) {
            const std::uint64_t half = whole[i].AL / 2 & ~std::uint64_t{7};
            left[i] = ExactFloat(whole[i].base, half);
            right[i] = ExactFloat(whole[i].base + half, half);
        }
    }

    // Hands the left half's results to the whole buffers that they lie in.
    void keep_left(typename Series::Buffers& whole) const {
        for (std::size_t i = 0; i < Series::output_count; i++) {
            const std::uint64_t capacity = whole[i].AL;
            whole[i] = left[i];
            whole[i].AL = capacity;
        }
    }
};

// Where a range is halved: evenly, as what its merges take out asks for, or as the series says.
template <typename SplitOfSeries>
std::uint64_t split(const RangeFactors& factors, std::uint64_t a, std::uint64_t b,
                    const SplitOfSeries& of_series) {
    return factors.any() ? (a + b) >> 1 : of_series();
}

// Merges the halves (a, m] and (m, b].
template <typename Series>
void merge_halves(const Series& series, const MultiplyContext& context, typename Series::Buffers& left,
                  typename Series::Buffers& right, std::uint64_t a, std::uint64_t m,
                  const RangeFactors& factors) {
    if constexpr (requires { &Series::cancel; }) {
        if (factors.any()) series.cancel(context, factors, left, right);
    }
    series.merge(context, left, right, series.subtracts(a, m));
}

}  // namespace bsr

// Sums (a, b] into the outputs, on the calling thread.
template <typename Series>
void BSR_serial(const Series& series, const MultiplyContext& context, typename Series::Buffers& out,
                std::uint64_t a, std::uint64_t b, RangeFactors factors = {}) {
    if (b - a <= series.longest_leaf) {
        series.leaf(context, out, a, b);
        return;
    }
    const std::uint64_t m = bsr::split(factors, a, b, [&] { return series.split(a, b); });
    BSR_serial(series, context, out, a, m, factors.of_half());
    auto right = bsr::above<Series>(out);
    BSR_serial(series, context, right, m, b, factors.of_half());
    bsr::merge_halves(series, context, out, right, a, m, factors);
}

// The same with the context's tasks. Merges use at most merge_tasks of them: the tasks of the recursion
// are more than there are threads.
template <typename Series>
void BSR_parallel(const Series& series, const MultiplyContext& context, std::uint64_t merge_tasks,
                  typename Series::Buffers& out, std::uint64_t a, std::uint64_t b,
                  RangeFactors factors = {}) {
    const std::uint64_t tasks = context.tds;
    if (tasks < 2 || b - a < bsr_parallel_terms) {
        BSR_serial(series, context.with_tasks(1), out, a, b, factors);
        return;
    }
    const std::uint64_t m = bsr::split(factors, a, b, [&] { return series.cost_split(a, b); });
    bsr::Halves<Series> halves(out);
    MultiplyContext left = context.with_tasks(tasks >> 1);
    MultiplyContext right = context.with_tasks(tasks - (tasks >> 1));
    left.scratch_words = right.scratch_words = context.scratch_words / 2 & ~std::uint64_t{7};
    right.scratch += right.scratch_words;
    context.run_pair(
        [&] { BSR_parallel(series, left, merge_tasks, halves.left, a, m, factors.of_half()); },
        [&] { BSR_parallel(series, right, merge_tasks, halves.right, m, b, factors.of_half()); });
    halves.keep_left(out);
    bsr::merge_halves(series, context.with_tasks(std::min(tasks, merge_tasks)), out, halves.right, a, m,
                      factors);
}

// One block: split serially `depth` times, each half with all threads, and in parallel below.
template <typename Series>
void BSR_block(const Series& series, const MultiplyContext& context, Progress* progress,
               typename Series::Buffers& out, std::uint64_t a, std::uint64_t b, std::uint64_t depth,
               RangeFactors factors = {}) {
    if (depth == 0 || b - a < bsr_parallel_terms) {
        const double units =
            series.SizeAtIndex(static_cast<double>(b)) - series.SizeAtIndex(static_cast<double>(a));
        const auto digits = static_cast<std::uint64_t>(std::llrint(units * series_constants().log10_e + 0.5));
        ScopedLabel arrow(progress, " -> ", label_colour);
        ScopedLabel size(progress, console::format_separated(digits), label_size_colour);
        BSR_parallel(series, context.with_tasks(bsr_tasks(context.tds)), context.tds, out, a, b, factors);
        return;
    }
    const std::uint64_t m = bsr::split(factors, a, b, [&] { return series.cost_split(a, b); });
    bsr::Halves<Series> halves(out);
    {
        ScopedLabel label(progress, "0", label_colour);
        BSR_block(series, context, progress, halves.left, a, m, depth - 1, factors.of_half());
    }
    {
        ScopedLabel label(progress, "1", label_colour);
        BSR_block(series, context, progress, halves.right, m, b, depth - 1, factors.of_half());
    }
    halves.keep_left(out);
    ScopedLabel label(progress, "-  ", label_colour);
    ScopedLabel size(progress, console::format_separated(word_to_dec(out[1].L + halves.right[1].L)),
                     label_size_colour);
    bsr::merge_halves(series, context, out, halves.right, a, m, factors);
}

}  // namespace qmp
