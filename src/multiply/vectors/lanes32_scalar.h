// One lane of 32-bit unsigned integers, in plain C++.
#pragma once

#include <cstdint>

#include "multiply/vectors/inline.h"

namespace {

struct Lanes32Scalar {
    static constexpr int log_lanes = 0;
    static constexpr int lanes = 1;
    static constexpr int halves = 1;      // vectors of 64-bit lanes that hold as many numbers
    static constexpr int half_lanes = 1;  // 64-bit lanes of one
    using Narrow = std::uint32_t;
    using Half = std::uint64_t;
    // 64-bit numbers, one for each lane of a Narrow.
    struct Wide {
        std::uint64_t value;
    };

    static KERNEL_INLINE Narrow load(const std::uint32_t* p) { return *p; }
    static KERNEL_INLINE void store(std::uint32_t* p, Narrow x) { *p = x; }
    static KERNEL_INLINE Narrow set(std::uint32_t x) { return x; }
    static KERNEL_INLINE Narrow add(Narrow a, Narrow b) { return a + b; }
    static KERNEL_INLINE Narrow sub(Narrow a, Narrow b) { return a - b; }
    static KERNEL_INLINE Narrow smaller(Narrow a, Narrow b) { return a < b ? a : b; }
    static KERNEL_INLINE Narrow bits_and(Narrow a, Narrow b) { return a & b; }
    // The low halves of the products.
    static KERNEL_INLINE Narrow mul_low(Narrow a, Narrow b) { return a * b; }

    static KERNEL_INLINE Wide wide_mul(Narrow a, Narrow b) { return {std::uint64_t{a} * b}; }
    // The low 32 bits of each number times b.
    static KERNEL_INLINE Wide wide_mul_low(Wide a, Narrow b) {
        return {std::uint64_t{static_cast<std::uint32_t>(a.value)} * b};
    }
    static KERNEL_INLINE Wide wide_add(Wide a, Wide b) { return {a.value + b.value}; }
    // The high halves of a - b, whose low halves are zero.
    static KERNEL_INLINE Narrow high_of_difference(Wide a, Wide b) {
        return static_cast<std::uint32_t>((a.value - b.value) >> 32);
    }
    static KERNEL_INLINE void transpose(Narrow (&)[1]) {}

    // The numbers whose index is `which` modulo `halves`, each in the low 32 bits of its lane; what stands
    // above is undefined.
    static KERNEL_INLINE Half half(Narrow x, int) { return x; }
    static KERNEL_INLINE void half_store(std::uint64_t* p, Half x) { *p = x; }
    static KERNEL_INLINE Half half_set(std::uint64_t x) { return x; }
    static KERNEL_INLINE Half half_mul_low(Half a, Half b) {
        return std::uint64_t{static_cast<std::uint32_t>(a)} * static_cast<std::uint32_t>(b);
    }
    static KERNEL_INLINE Half half_add(Half a, Half b) { return a + b; }
    static KERNEL_INLINE Half half_and(Half a, Half b) { return a & b; }
    static KERNEL_INLINE Half half_or(Half a, Half b) { return a | b; }
    static KERNEL_INLINE Half half_left(Half a, int n) { return a << n; }
    static KERNEL_INLINE Half half_right(Half a, int n) { return a >> n; }
};

}  // namespace
