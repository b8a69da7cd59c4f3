// What the stress tester asks of a test: an operation that multiplies, and what it needs for that.
//
// A test's size is measured in units L: the most words that its product has.
#pragma once

#include <cstdint>

#include "multiply/algorithm.h"
#include "multiply/multiply_context.h"

namespace kelvara {

// What the twiddle tables of a test have to reach: TwiddleSet's arguments. All zero for a test without
// tables.
struct TwiddleReach {
    std::uint64_t product_words = 0;
    std::uint64_t fft_words = 0;
};

// What one product of n by n words amounts to.
struct ProductWork {
    // Additions, products, roundings and fused multiply-adds of double precision, each lane of a vector one;
    // estimated. 0 where a test's work is not of this kind.
    double operations = 0;
    // The least that crosses between the caches, or the memory, and the core.
    double bytes = 0;
};

// Objects are used by many threads at a time.
class StressTest {
  public:
    virtual ~StressTest() = default;

    // The largest product, in bits.
    virtual std::uint64_t max_bits() const = 0;
    // Scratch in bytes for products of up to `units` words. Non-decreasing; units >= 1, and no more than
    // max_bits() allows.
    virtual std::uint64_t scratch_bytes(std::uint64_t units) const = 0;
    virtual TwiddleReach twiddle_reach(std::uint64_t units) const = 0;
    // product[0 .. 2n) = a^2, of n words. The context's scratch and tables are those asked for above.
    virtual void square(const qmp::MultiplyContext& context, qmp::Word* product, const qmp::Word* a,
                        std::uint64_t n) const = 0;
    virtual ProductWork work(std::uint64_t n) const = 0;
};

}  // namespace kelvara
