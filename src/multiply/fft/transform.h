// Convolutions of N = r * 2^k points by complex transforms of half that length.
//
// The points of an operand are packed in pairs, point(2e) + i * point(2e + 1), into length = N / 2 complex
// numbers. Passes that cut every block into 4 or 8 (decimation in frequency) lead down to blocks of
// r * lanes numbers, which the innermost kernels finish; nothing is ever brought back into natural order,
// as the pointwise product finds frequencies k and -k in mirrored places. The inverse transform runs the
// same way back. Blocks are taken depth first, so that those that fit the nearest cache stay there.
//
// All operations fan out through the parallel framework once a task has 2^15 points to itself; the
// result does not depend on it. None allocates. Misuse (a point size or a length that the kernels do not
// have) ends in invalid_function_parameters().
#pragma once

#include <cstdint>

#include "multiply/fft/fft_params.h"
#include "multiply/fft/levels.h"
#include "multiply/fft/twiddle_table.h"
#include "platform/parallel/parallel_context.h"

namespace qmp::fft {

// What the passes of one convolution size share. The table is that of the multiplier r and reaches k.
struct Plan {
    const KernelLevel* level;
    const TwiddleTable* table;
    FftParams params;

    Plan(const FftParams& fft_params, const TwiddleTable& twiddles);
};

// Points from the little-endian bits of `count` bytes, zeros beyond them; count * 8 <= capacity.
void split_points(ParallelContext parallel, const Plan& plan, double* data, const void* bytes,
                  std::uint64_t count);

void forward_transform(ParallelContext parallel, const Plan& plan, double* data);

// Both, and less work for an operand that fills at most half of the convolution: the upper half of its points
// is never written out.
void transform_operand(ParallelContext parallel, const Plan& plan, double* data, const void* bytes,
                       std::uint64_t count);

// a becomes the transform of the cyclic product; b is kept. b == a gives the square.
void pointwise_product(ParallelContext parallel, const Plan& plan, double* a, const double* b);

// Leaves the coefficients multiplied by N / 2.
void inverse_transform(ParallelContext parallel, const Plan& plan, double* data);

// What splitting took from every point comes back in the merge; this is the coefficients' share of it,
// from two transforms before their product.
double coefficient_shift(const Plan& plan, const double* a, const double* b);

// words[0 .. capacity / 64) = the convolution modulo 2^capacity - 1, in [0, 2^capacity - 1].
// `carries` holds N / 64 words.
void merge_points(ParallelContext parallel, const Plan& plan, std::uint64_t* words, std::uint64_t* carries,
                  const double* data, double shift);

// Points that a kernel of this point size takes at a time; 0 when there is no such kernel.
constexpr std::uint64_t kernel_block(std::uint64_t b) {
    if (b < smallest_width || b > largest_width) return 0;
    return b == 16 ? 16 : b == 20 ? 64 : 128;
}

}  // namespace qmp::fft
