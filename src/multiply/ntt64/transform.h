// Transforms of operands modulo every prime of a size, and their products back to residues of coefficients.
#pragma once

#include <cstdint>

#include "multiply/limit_tables.h"
#include "multiply/ntt64/kernels/kernels.h"
#include "multiply/ntt64/prime_table.h"
#include "platform/parallel/parallel_context.h"

namespace qmp::ntt64 {

// The shortest lengths are multiplier * 2^6: rows and columns go by eight.
constexpr std::uint32_t fewest_exponent = 6;

// One size, cyclic or negacyclic. A transformed operand is a matrix of `points` words for each prime, one
// after another.
struct Plan {
    SizeParams size;
    Matrix matrix;
    std::uint64_t points;
    std::uint64_t point_bytes;  // 4 * (primes - 1)
    const PrimeSet* primes;
    std::uint64_t table_words;   // of scratch, for the roots of all primes
    std::uint64_t buffer_words;  // of scratch, for the columns of one task
    std::uint64_t buffers;       // tasks that may work on columns at a time

    // LimitExceededException when the size's primes have no roots of unity of the order that it needs.
    Plan(const SizeParams& size, bool negacyclic);

    std::uint64_t scratch_words() const { return table_words + buffers * buffer_words; }
};

// data[0 .. primes * points): the transform of a little-endian operand of up to points * point_bytes bytes.
void forward_transform(ParallelContext parallel, const Plan& plan, std::uint64_t* data, const void* operand,
                       std::uint64_t bytes, std::uint64_t* scratch);

// a = the residues of the coefficients of the product of two transforms, times `points` and divided by 2^64.
// `b` may be `a`. Within a square of points they lie row by row.
void inverse_transform(ParallelContext parallel, const Plan& plan, std::uint64_t* a, const std::uint64_t* b,
                       std::uint64_t* scratch);

}  // namespace qmp::ntt64
