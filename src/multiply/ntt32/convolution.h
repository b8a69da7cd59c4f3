// Convolutions of multiplier * 2^exponent points modulo several primes.
//
// A transformed operand is primes * multiplier rows of 2^exponent residues: the points are a polynomial in x,
// and with z = x^multiplier row j holds the coefficients of x^j, polynomials in z. All rows are transformed
// alike, by power-of-two transforms, and the products at their leaves are products of polynomials modulo
// x^multiplier - r (kernels/kernels.h). So the primes need roots of unity for the power of two only.
//
// Rows, blocks of rows and ranges of columns are the unit of parallel work; no result depends on it. Nothing
// is allocated.
#pragma once

#include <cstdint>

#include "multiply/limit_tables.h"
#include "multiply/ntt32/recombination.h"
#include "multiply/ntt32/root_tables.h"
#include "multiply/word.h"
#include "platform/parallel/parallel_context.h"

namespace qmp::ntt32 {

// What the passes of one size share, for the instruction-set level that runs at construction.
struct Plan {
    SizeParams params;
    const Kernels* kernels;
    const RootTables* roots;
    const Recombination* constants;

    // invalid_function_parameters() when the primes are too small for the length, or the length too small for
    // the kernels.
    explicit Plan(const SizeParams& size);

    std::uint64_t row_length() const { return std::uint64_t{1} << params.exponent; }
    // Rows would otherwise all start in the same set of a cache.
    std::uint64_t row_stride() const { return row_length() + column_group; }
    std::uint64_t rows() const { return std::uint64_t{params.primes} * params.multiplier; }
};

// In words of 64 bits.
std::uint64_t transformed_words(const SizeParams& size);
std::uint64_t scratch_words_of(const SizeParams& size);

// Points from `count` bytes, zeros beyond them, and their transform; 8 * count <= capacity.
void forward_transform(ParallelContext parallel, const Plan& plan, std::uint32_t* rows, const void* bytes,
                       std::uint64_t count);

// a becomes the cyclic product, times 2^(exponent - 32); b is kept and may be a.
void multiply_and_inverse(ParallelContext parallel, const Plan& plan, std::uint32_t* a,
                          const std::uint32_t* b);

// The coefficients of such a product, added up modulo 2^capacity - 1, to scratch[0 .. capacity / 64). Returns
// the largest coefficient divided by 2^(32 (primes - 1)).
std::uint64_t recombine(ParallelContext parallel, const Plan& plan, Word* scratch, const std::uint32_t* rows);

}  // namespace qmp::ntt32
