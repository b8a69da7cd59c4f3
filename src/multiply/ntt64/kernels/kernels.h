// The kernels of one instruction set, as a table of functions, and what they work on.
//
// The points of a transform modulo one prime are a matrix of `rows` rows and `columns` columns: point
// i * columns + j is row i, column j. A forward transform first transforms the columns, then the rows; the
// inverse goes backwards. The matrix lies in memory as squares of 8 x 8 points, row of squares after row of
// squares. Within a square the points lie row by row in natural order, and column by column once the columns
// are transformed: so both passes work on eight columns, or rows, side by side, and vectors of any length
// up to eight find their points next to one another.
//
// All residues are below p. Results are the same on every level.
#pragma once

#include <cstdint>

namespace qmp::ntt64 {

constexpr std::uint64_t lanes = 8;  // columns and rows worked on side by side, whatever the vector length
constexpr std::uint32_t most_limbs = 4;
constexpr std::uint32_t most_turns = 60;

struct Matrix {
    std::uint64_t rows;     // 2^log_rows, at least 8
    std::uint64_t columns;  // multiplier * 2^log_columns, 2^log_columns at least 8
    std::uint32_t log_rows;
    std::uint32_t log_columns;
    std::uint32_t multiplier;  // 1, 3, 5, 7
    std::uint32_t negacyclic;  // 1: modulo x^points + 1, 0: modulo x^points - 1
};

// A constant factor c below p, and floor(2^64 c / p).
struct Twiddle {
    std::uint64_t value;
    std::uint64_t quotient;
};

// Everything of one prime and one direction (roots.h). An inverse transform has the inverse roots.
struct Roots {
    std::uint64_t prime;    // 2^62 < p < 2^63
    std::uint64_t inverse;  // p * inverse = 1 modulo 2^64
    std::uint64_t one;      // 2^64 modulo p
    // trees[u][j]: the factor of node j of a tree of halvings (tree.h), times the u-th power of the
    // multiplier's root.
    const Twiddle* trees[7];
    // Half the sum and half the difference of the powers t * i and -t * i of the multiplier's root, at
    // [t - 1][i - 1].
    Twiddle cosines[3][3];
    Twiddle sines[3][3];
    // 2^64 times the 2^i-th power of the root of unity of the transform's whole order.
    std::uint64_t turns[most_turns];
    Twiddle limbs[most_limbs];  // 2^(64 i)
};

// An operand: little-endian bytes, zero beyond their end. A point is `point_bytes` of them, a multiple of 4.
struct Source {
    const unsigned char* bytes;
    std::uint64_t count;
    std::uint64_t point_bytes;
};

// Columns 8 * begin to 8 * end. The buffer holds rows * 8 words. Forward columns read the operand.
using ForwardColumns = void (*)(const Matrix&, const Roots&, const Source&, std::uint64_t* data,
                                std::uint64_t* buffer, std::uint64_t begin, std::uint64_t end);
using InverseColumns = void (*)(const Matrix&, const Roots&, std::uint64_t* data, std::uint64_t* buffer,
                                std::uint64_t begin, std::uint64_t end);
// Rows 8 * begin to 8 * end.
using ForwardRows = void (*)(const Matrix&, const Roots&, std::uint64_t* data, std::uint64_t begin,
                             std::uint64_t end);
// The same of the product of a and b, to a. Products come out divided by 2^64, and multiplied by the number
// of points once all is transformed back.
using InverseRows = void (*)(const Matrix&, const Roots&, std::uint64_t* a, const std::uint64_t* b,
                             std::uint64_t begin, std::uint64_t end);

struct Kernels {
    ForwardColumns forward_columns;
    ForwardRows forward_rows;
    InverseRows inverse_rows;
    InverseColumns inverse_columns;
};

extern const Kernels kernels_scalar;
extern const Kernels kernels_avx512;

}  // namespace qmp::ntt64
