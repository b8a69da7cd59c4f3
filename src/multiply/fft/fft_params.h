// The length and the point size of a floating-point convolution.
//
// A convolution of r * 2^k points of b bits each multiplies modulo 2^capacity_bits - 1. The lengths and
// point sizes on offer are fixed tables (size_tables.h): points are as wide as the rounding error of
// double precision allows at that length (NUMERICS.md).
#pragma once

#include <cstdint>

namespace qmp::fft {

struct FftParams {
    std::uint32_t r;              // length multiplier: 1, 3 or 5 (the transform takes 7 as well)
    std::uint32_t k;              // log2 of the power of two in the length
    std::uint64_t b;              // bits per point
    std::uint64_t points;         // r * 2^k
    std::uint64_t capacity_bits;  // b * points: the largest product

    bool operator==(const FftParams&) const = default;
};

constexpr FftParams make_params(std::uint32_t r, std::uint32_t k, std::uint64_t b) {
    const std::uint64_t points = std::uint64_t{r} << k;
    return {r, k, b, points, b * points};
}

// The smallest convolution for products of s bits. LimitExceededException above 100663296 bits.
const FftParams& fft_params(std::uint64_t s);

// The convolution of exactly s bits, for records that are rebuilt from their stored size.
// InvalidParametersException "Invalid Parameters" when there is none, LimitExceededException above the
// largest one.
const FftParams& fft_params_exact(std::uint64_t s);

}  // namespace qmp::fft
