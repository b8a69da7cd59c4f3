// The transform's kernels, one table of them per instruction-set level.
//
// The transform walks down a binary tree. A node of angle a stands for the polynomials modulo x^n - e(a),
// e(t) the prime's root of unity for the fraction t of the circle; its children have the angles a / 2 and
// a / 2 + 1 / 2 and half the length, and the step between them multiplies by e(a / 2). In a subtree whose
// top has angle a, node b of layer l has the factor e((f(b) + a / 2^l) / 2), f(b) the bits of b mirrored
// behind the binary point (van der Corput's sequence), so T[b] * e(a / 2^(l+1)) with T[b] = e(f(b) / 2),
// which is the same for all subtrees.
//
// Values are doubles holding integers, in bounds that modular.h, radix.h and NUMERICS.md give.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qmp::vst {

struct PrimeModulus {
    double prime;
    double inverse;
};

// Factors of a subtree's nodes: node b of layer l at index 2^l + b, and each factor's quotient by the prime.
struct NodeFactors {
    const double* values;
    const double* quotients;
};

// Rows elsewhere than in the data that is worked on.
struct MatrixRows {
    double* first = nullptr;  // none: the data stays where it is
    std::uint64_t stride = 0;
    bool past_caches = false;  // for writing
};

// Blocks of `unit` doubles (a multiple of the lanes): 2^layers of them, layer by layer.
struct Layers {
    std::uint64_t unit;
    int layers;
    NodeFactors factors;  // the inverses for the way back
    // The top has angle 0 and the inputs are at most 0.75: factors 1, 1 and the square root of -1.
    bool trivial_top;
    // Where the blocks go with the last step down, or come from with the first one back.
    MatrixRows rows = {};
};

// The constants of the first step, which cuts m * n into m blocks of n, m = 3, 5, 7: for k = 1 ..
// (m - 1) / 2 half the sum and half the difference of z^k and its inverse, z an m-th root of unity.
struct OuterFactors {
    double sums[3], sum_quotients[3];
    double differences[3], difference_quotients[3];
};

// The factors that every leaf's own are made from, for one prime and one direction.
struct LeafBase {
    const double* nodes;  // T[b] at index 2^l + b; index 0 holds 0
    const double* lanes;  // the twist of blocks, record by record, see leaf_table.h
};

struct TransformKernels {
    int log_lanes;

    // Inputs "low" if `low`, else "high", and so are the outputs: 1.8 and 3 on levels with fused
    // multiply-add, 2.2 and 3.7 on the others.
    void (*forward_layers)(double* data, const Layers& layers, const PrimeModulus& modulus, bool low);
    // Inputs and outputs at most 1.8.
    void (*inverse_layers)(double* data, const Layers& layers, const PrimeModulus& modulus);
    // By multiplier / 2; block s at data + s * block. Inputs at most 0.75, outputs high.
    void (*forward_outer[4])(double* data, std::uint64_t block, const OuterFactors& factors, bool negacyclic,
                             const PrimeModulus& modulus);
    // Inputs at most 1.8, outputs at most 5.5.
    void (*inverse_outer[4])(double* data, std::uint64_t block, const OuterFactors& factors, bool negacyclic,
                             const PrimeModulus& modulus);

    // For each of `count` numbers r (a multiple of 8): r^(2^i) to powers[i * count ..], i < steps. Inputs and
    // outputs at most 0.51.
    void (*square_chain)(double* powers, const double* numbers, std::uint64_t count, int steps,
                         const PrimeModulus& modulus);
    // products[i] = x[i] * y, at most 0.51; count a multiple of 8.
    void (*scale)(double* products, const double* x, double y, std::uint64_t count,
                  const PrimeModulus& modulus);
    // A leaf's table for one direction, from e(a / 2^(l+1)), or its inverse, at rho[l * stride]. The leaf's
    // points are multiplied by `scale` on their way, at most 0.5.
    void (*leaf_table)(double* table, const LeafBase& base, int log_length, const double* rho,
                       std::ptrdiff_t stride, double scale, const PrimeModulus& modulus);
    // A leaf of 2^log_length points (6 to 10): inputs high, outputs at most 5.8.
    void (*leaf_forward)(double* data, const double* table, const LeafBase& base, int log_length,
                         const PrimeModulus& modulus);
    // Inputs and outputs at most 1.8.
    void (*leaf_inverse)(double* data, const double* table, const LeafBase& base, int log_length,
                         const PrimeModulus& modulus);
    // a[i] = a[i] * b[i]. Inputs at most 5.8, outputs at most 1.8. b may be a.
    void (*pointwise)(double* a, const double* b, std::uint64_t count, const PrimeModulus& modulus);
};

constexpr int longest_leaf = 10;  // log2 of its points

// Doubles of a leaf's table: values and quotients of the nodes (chunks have two points at least) and the
// first layer's four vectors.
constexpr std::uint64_t leaf_table_doubles = (std::uint64_t{1} << longest_leaf) + 4 * 8;

extern const TransformKernels transform_scalar;
extern const TransformKernels transform_sse2;
extern const TransformKernels transform_fma4;
extern const TransformKernels transform_avx2;
extern const TransformKernels transform_avx512;

}  // namespace qmp::vst
