// The kernels of one instruction set, as a table of functions.
//
// Transformed data lie in an order that suits the vector length, so all steps of a product run on the
// same table.
#pragma once

#include <cstdint>

namespace qmp::fft {

// Length multipliers 1, 3, 5, 7 have the indices 0 to 3; point widths 9 to 21 the indices 0 to 12.
constexpr int multiplier_count = 4;
constexpr int smallest_width = 9;
constexpr int largest_width = 21;
constexpr int width_count = largest_width - smallest_width + 1;

// Up to this width the merge puts two whole coefficients, even + odd * 2^width, and a carry into 64 bits.
// Coefficients are at most N (2^width - 1)^2 and the carry is less than N 2^width.
constexpr int widest_whole_pair = 16;
constexpr bool pairs_fit(std::uint64_t width, std::uint64_t points) {
    return width > widest_whole_pair || points <= std::uint64_t{1} << (64 - 3 * width);
}

// Positions [begin, end) of every block of `length` complex numbers (passes.h).
using Pass4 = void (*)(double* data, std::uint64_t length, std::uint64_t blocks, const double* level,
                       std::uint64_t begin, std::uint64_t end);
using Pass8 = void (*)(double* data, std::uint64_t length, std::uint64_t blocks, const double* level,
                       const double* half_level, std::uint64_t begin, std::uint64_t end);
// Rows [begin, end) (base.h).
using Base = void (*)(double* data, const double* roots, std::uint64_t begin, std::uint64_t end);
// Pairs [begin, end) of rows; b is ignored by squares (pointwise.h).
using Pointwise = void (*)(double* a, const double* b, const double* base_turns, const double* level,
                           int log_rows, std::uint64_t begin, std::uint64_t end);
// Groups [begin, end) of 16 points, from an operand of `count` bytes (split.h).
using Split = void (*)(double* data, const unsigned char* bytes, std::uint64_t count, std::uint64_t begin,
                       std::uint64_t end);
// Blocks [begin, end) of 64 points (merge.h).
using Merge = void (*)(std::uint64_t* words, std::uint64_t* carries, const double* data, double scale,
                       double offset, std::uint64_t begin, std::uint64_t end);

struct Kernels {
    const char* name;
    int log_lanes;
    bool wide_passes;  // passes of eight parts pay: enough registers
    Pass4 forward4, inverse4;
    Pass8 forward8, inverse8;
    Base forward_base[multiplier_count], inverse_base[multiplier_count];
    Pointwise multiply[multiplier_count], square[multiplier_count];
    Split split[width_count];
    Merge merge[width_count];

    int lanes() const { return 1 << log_lanes; }
};

extern const Kernels kernels_scalar;
extern const Kernels kernels_sse2;
extern const Kernels kernels_fma4;
extern const Kernels kernels_avx2;
extern const Kernels kernels_avx512;

}  // namespace qmp::fft
