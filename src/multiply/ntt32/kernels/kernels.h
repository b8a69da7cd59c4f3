// The kernels of the 32-bit transforms, one table of them per instruction-set level.
//
// Residues are modulo primes p below 2^31 and stand between 0 and p - 1 in memory. A row is 2^k residues, and
// its transform takes apart Z[z] / (z^n - 1): node j at depth d is the ring modulo z^(n / 2^d) - r(j), where
// nodes 2j and 2j + 1 are modulo z^(n / 2^(d+1)) -+ W(j). So r(2j) = W(j), r(2j + 1) = -W(j), W(j)^2 = r(j):
// with w a 2^e-th root of unity and b0, b1, ... the bits of j, W(j) = w^(2^e (b0/4 + b1/8 + ...)), the same
// for rows of every length. Nodes take the places of their halves, so that nothing is ever reordered: leaves
// come out in the order of their index. The inverse runs the same way back and leaves n times the residues.
//
// With L lanes to a vector, the innermost L^2 residues are L nodes of depth k - log2 L: they are transposed,
// multiplied by powers of D(X) = r(X)^(1/L), which makes every node X one modulo z^L - 1, and stay
// transposed. Leaf v of node X = L t + lane stands at L^2 t + L v + lane.
#pragma once

#include <cstdint>

namespace qmp::ntt32 {

struct Modulus {
    std::uint32_t prime;
    std::uint32_t inverse;  // of the prime modulo 2^32
};

// A constant to multiply by: value = c 2^32 modulo p, companion = value / p modulo 2^32.
struct Factor {
    std::uint32_t value;
    std::uint32_t companion;
};

constexpr int table_bits = 12;
constexpr std::uint32_t table_size = 1u << table_bits;
constexpr std::uint32_t table_padding = 16;  // vectors are loaded from any place of a table

// A function of node indices that is multiplicative over their bits: f(x) = low[x % size] * high[x / size].
// Values and companions as in Factor, in arrays of their own.
struct IndexTable {
    std::uint32_t low[table_size + table_padding];
    std::uint32_t low_companion[table_size + table_padding];
    std::uint32_t high[table_size];
};

// One prime, one direction: W and D, or their inverses.
struct Roots {
    Modulus modulus;
    IndexTable split;  // W
    IndexTable twist;  // D
};

constexpr int most_primes = 9;
constexpr int fewest_primes = 4;
constexpr int digit_bits = 28;
constexpr int most_digits = 10;  // of a coefficient: 9 * 31 <= 10 * 28
constexpr int most_chunks = 4;   // of 32 bits, in a point of 16 * 8

// Columns that the kernels below take at a time, and that ranges are multiples of.
constexpr std::uint64_t column_group = 16;

// Point i of an operand is the bytes [width * i, width * (i + 1)), width = 2 (primes - 1). With the length
// multiplier m, row j of a prime holds the points j + m c, c = 0, 1, ..., its columns; rows of prime i begin
// at row i * m.
struct SplitJob {
    const unsigned char* bytes;
    std::uint64_t count;  // of bytes; zeros stand beyond
    std::uint32_t* rows;
    std::uint64_t row_stride;
    std::uint32_t multiplier;
    const Modulus* moduli;
    const Factor (*chunk_weights)[most_chunks];  // 2^(32 i) modulo each prime
};

// From residues back to points, P the product of the primes.
struct RecombineJob {
    const std::uint32_t* rows;
    std::uint64_t row_stride;
    std::uint32_t multiplier;
    const Modulus* moduli;
    const Factor* scales;                           // what makes the inverse transform's residues y(i)
    const std::uint32_t (*cofactors)[most_digits];  // P / p(i), in digits of 28 bits
    const std::uint32_t* reciprocals;               // floor(2^60 / p(i))
    const std::uint32_t* complement;                // 2^(28 digits) - P
    unsigned char* product;                         // the points, of which a job writes those of its columns
};

// What a range of columns leaves behind.
struct RecombineResult {
    std::uint64_t carry[3];  // to be added from its end on
    std::uint64_t largest;   // largest coefficient, divided by 2^(32 (primes - 1))
};

using ColumnsPass = void (*)(std::uint32_t* block, int log_length, std::uint64_t node, const Roots& roots,
                             std::uint64_t begin, std::uint64_t end);
using BlockPass = void (*)(std::uint32_t* block, int log_length, std::uint64_t node, const Roots& roots);
using Pointwise = void (*)(std::uint32_t* a, const std::uint32_t* b, std::uint64_t row_stride,
                           const Roots& roots, std::uint64_t begin, std::uint64_t end);

struct Kernels {
    int log_lanes;
    // For 4 to 9 primes (primes - 4).
    void (*split[6])(const SplitJob& job, std::uint64_t begin, std::uint64_t end);
    // One node into two or four, for the columns [begin, end) of a half or quarter of it.
    ColumnsPass forward2, forward4;
    ColumnsPass inverse2, inverse4;
    // One node to its leaves; 2^log_length >= L^2.
    BlockPass forward, inverse;
    // The product of the rows' polynomials at the tiles [begin, end) of L^2 leaves, for multipliers 1, 3, 5,
    // 7 (multiplier / 2): m rows hold one polynomial modulo x^m - r. Everything is divided by 2^32. b may be
    // a.
    Pointwise pointwise[4];
    RecombineResult (*recombine[6])(const RecombineJob& job, std::uint64_t begin, std::uint64_t end);
};

extern const Kernels kernels_scalar;
extern const Kernels kernels_avx2;
extern const Kernels kernels_avx512;

}  // namespace qmp::ntt32
