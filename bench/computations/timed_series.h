// A series whose leaves and merges are timed, for the recursions of series/bsr_engine.h. One task only.
#pragma once

#include <x86intrin.h>

#include <array>
#include <bit>
#include <cstdint>

#include "multiply/multiply_context.h"
#include "series/common_factors.h"

namespace bench {

// Counts of the processor's time stamp: reading it costs less than anything that is timed here.
struct WorkTimes {
    struct Kind {
        std::uint64_t count = 0;
        std::uint64_t ticks = 0;

        void add(std::uint64_t from) {
            ++count;
            ticks += __rdtsc() - from;
        }
    };
    Kind leaves;
    Kind divisors;                // common factors, prepared
    Kind factors;                 // and taken out
    std::array<Kind, 64> merges;  // by the bit width of the words of Q, less 1
};

template <typename Series>
class TimedSeries {
  public:
    static constexpr std::size_t output_count = Series::output_count;
    static constexpr std::size_t buffer_count = Series::buffer_count;
    using Buffers = typename Series::Buffers;

    TimedSeries(const Series& series, WorkTimes& times)
        : longest_leaf(series.longest_leaf), series_(series), times_(times) {}

    const std::uint64_t longest_leaf;

    std::uint64_t split(std::uint64_t a, std::uint64_t b) const { return series_.split(a, b); }
    std::uint64_t cost_split(std::uint64_t a, std::uint64_t b) const { return series_.cost_split(a, b); }
    double SizeAtIndex(double x) const { return series_.SizeAtIndex(x); }
    bool subtracts(std::uint64_t a, std::uint64_t m) const { return series_.subtracts(a, m); }

    void leaf(const qmp::MultiplyContext& context, Buffers& out, std::uint64_t a, std::uint64_t b) const {
        const std::uint64_t start = __rdtsc();
        series_.leaf(context, out, a, b);
        times_.leaves.add(start);
    }
    void merge(const qmp::MultiplyContext& context, Buffers& whole, const Buffers& right,
               bool subtract) const {
        const std::uint64_t start = __rdtsc();
        series_.merge(context, whole, right, subtract);
        times_.merges[static_cast<std::size_t>(std::bit_width(whole[1].L)) - 1].add(start);
    }

    void cancel(const qmp::MultiplyContext& context, const qmp::RangeFactors& factors, Buffers& left,
                Buffers& right) const requires requires {
        &Series::cancel;
    }
    {
        const std::uint64_t start = __rdtsc();
        series_.cancel(context, factors, left, right);
        times_.factors.add(start);
    }

  private:
    const Series& series_;
    WorkTimes& times_;
};

}  // namespace bench
