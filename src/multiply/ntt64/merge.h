// Residues of coefficients to the words of the product.
#pragma once

#include <cstdint>

#include "multiply/ntt64/transform.h"
#include "multiply/word.h"

namespace qmp::ntt64 {

// Scratch that merge_coefficients() needs, beside the product.
constexpr std::uint64_t merge_scratch_words = 256 * 8;

// product[0 .. capacity_bits / 64) = the product whose coefficients have these residues, as
// inverse_transform() leaves them. True when it is R^n modulo R^n + 1 (negacyclic), and its words are zero.
// ConvolutionFailedException "Coefficient is too large." in the name of `function` when a coefficient does
// not keep its bound.
bool merge_coefficients(ParallelContext parallel, const Plan& plan, const char* function, Word* product,
                        const std::uint64_t* residues, Word* scratch);

}  // namespace qmp::ntt64
