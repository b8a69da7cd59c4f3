// Convolutions of 2^k points in the ring modulo 2^(32 n) + 1.
//
// The transforms are shifts and additions; the products of residues are made by floating-point convolutions,
// short ones by the basecase. Residues stand one after the other, n / 2 words and a carry word each; the
// forward transform leaves them in bit-reversed order.
//
// Points are divided among at most `shares` tasks, each with a part of the scratch of its own; no result
// depends on how many run. Nothing is allocated.
#pragma once

#include <cstdint>

#include "multiply/hybrid_ntt/hybrid_params.h"
#include "multiply/hybrid_ntt/ring.h"
#include "multiply/multiply_context.h"

namespace qmp::hybrid_ntt {

struct Plan {
    HybridParams params;
    Ring ring;
    std::uint64_t shares;         // a power of two, that leaves each an even number of points
    std::uint64_t product_words;  // scratch of one product of residues
    std::uint64_t share_words;    // of one task

    explicit Plan(const HybridParams& size);

    // log2 of the product's points
    std::uint32_t k() const { return params.k; }
    std::uint64_t transformed_words() const { return params.points() * ring.residue_words(); }
    std::uint64_t scratch_words() const;
};

// Points from `count` bytes, zeros beyond them, and their transform; 8 * count <= capacity.
void forward_transform(const MultiplyContext& context, const Plan& plan, Word* residues, const void* bytes,
                       std::uint64_t count);

// a becomes the coefficients of the cyclic product; b is kept and may be a. The context holds scratch_words()
// and the twiddle tables for floating-point products of n words.
void multiply_and_inverse(const MultiplyContext& context, const Plan& plan, Word* a, const Word* b);

// The coefficients, added up modulo 2^capacity - 1, to the scratch's [0, capacity / 64). Returns the largest
// coefficient divided by 2^(32 n - 64), at least 2^64 - 1 taken for those that have a carry word.
std::uint64_t recombine(const MultiplyContext& context, const Plan& plan, const Word* residues);

}  // namespace qmp::hybrid_ntt
