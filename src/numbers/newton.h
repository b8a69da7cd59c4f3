// Newton iterations: reciprocal, quotient and inverse square root of BigFloats to p words.
//
// The elementary forms (_E) multiply with set_mul; the transform forms (_P) transform each operand once
// and form only the unknown part of each product. The transform forms hand over to the elementary ones
// below 10 words. Every step checks that the estimate before it was good enough:
// AlgorithmFailedException ("Convergence Failure" and its kin) otherwise, ArithmeticException for a
// division by zero. No partial result survives an exception. A result is off by at most two units of word
// position top - p, that is, its first p words are right; it does not depend on the task count.
//
// `scratch` holds the intermediate numbers, sized by the functions below; the context's own scratch
// serves the products. The result may not overlap an input.
#pragma once

#include <cstdint>

#include "console/progress.h"
#include "numbers/big_float.h"

namespace qmp {

// From this precision on, the transform forms iterate by transforms.
constexpr std::uint64_t newton_transform_precision = 10;

// Scratch in words for the intermediate numbers, and product scratch in bytes, of each form at p words.
std::uint64_t reciprocal_scratch_words(std::uint64_t p);
std::uint64_t division_scratch_words(std::uint64_t p);
std::uint64_t inverse_square_root_scratch_words(std::uint64_t p);
std::uint64_t newton_multiply_scratch_bytes(std::uint64_t p, std::uint64_t tasks);
// The longest product, in words, that any of the forms makes at p words: what the twiddle set must cover.
std::uint64_t newton_largest_product(std::uint64_t p);

// r = 1/x. Capacity of r: p + 3 words.
void BigFloatR_rcp_E(const MultiplyContext& context, BigFloat& r, BigFloatView x, std::uint64_t p,
                     Word* scratch, std::uint64_t scratch_words);
void BigFloatR_rcp_P(const MultiplyContext& context, BigFloat& r, BigFloatView x, std::uint64_t p,
                     Word* scratch, std::uint64_t scratch_words, Progress* progress);
// q = a/b. Capacity of q: p + 3 words, of which q takes at most p + 2.
void BigFloatR_div_P(const MultiplyContext& context, BigFloat& q, BigFloatView a, BigFloatView b,
                     std::uint64_t p, Word* scratch, std::uint64_t scratch_words, Progress* progress);
// r = 1/sqrt(w). Capacity of r: p + 4 words.
void BigFloatR_invsqrt_uW_E(const MultiplyContext& context, BigFloat& r, Word w, std::uint64_t p,
                            Word* scratch, std::uint64_t scratch_words);
void BigFloatR_invsqrt_uW_P(const MultiplyContext& context, BigFloat& r, Word w, std::uint64_t p,
                            Word* scratch, std::uint64_t scratch_words, Progress* progress);

}  // namespace qmp
