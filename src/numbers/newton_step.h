// What the Newton iterations of this folder share: the precision schedule, the checks of an estimate, the
// labels, and each iteration's single step, which improves a given estimate.
//
// An estimate r' of 1/x at p' words makes y = x r' nearly 1. e = |y - 1| is what the step corrects, and
// it must lie below word position 2 - p': an estimate that is worse is a failure of the iteration.
//
// How precise a step is, with R = 2^64. A relative error of d' R^-(p'+1) in the estimate leaves
// d'^2 R^-2(p'+1), at most (d'^2 / R) R^-(p+1), to which the words that are dropped add a few R^-(p+1). So
// a step keeps p + 2 words: then d stays small. With one word fewer, d'^2 would not be divided by R, and
// an unlucky operand's errors would grow from doubling to doubling until the check fails. (Only where x is
// just above a power of R does y spend a word on its integer part; the elementary form then drops up to
// R^-p, always to the same side, of which the next step's square, to the other side, is at most as much.)
#pragma once

#include <cstdint>
#include <string_view>

#include "console/progress.h"
#include "multiply/multiply.h"
#include "numbers/big_float.h"
#include "numbers/transformed_operand.h"

namespace qmp::newton {

// The precision of the estimate that a step to p >= 1 words starts from.
constexpr std::uint64_t estimate_precision(std::uint64_t p) {
    return p == 1 ? 0 : (p + 1) >> 1;
}

// The largest top position that e may have.
constexpr std::int64_t largest_error_top(std::uint64_t estimate_p) {
    return 2 - static_cast<std::int64_t>(estimate_p);
}

enum class Estimate { over, under };

// The elementary forms: y whole. Turns y into e and tells on which side the estimate was. An exact
// estimate is an over-estimate with e = 0. `function` is named in the exceptions.
Estimate take_error(const char* function, BigFloat& y, std::uint64_t estimate_p);
// The transform forms: y's words below known_top only, those above being known.
Estimate take_error_below(const char* function, BigFloat& y, std::int64_t known_top,
                          std::uint64_t estimate_p);
// y = R^top(y) - y for y > 0 whose top word is all ones; fails when e is too large for an estimate of
// this precision. ArithmeticException when y is zero.
void complement_under_estimate(const char* function, BigFloat& y, std::uint64_t estimate_p);

// r = estimate - correction when it was an over-estimate, else estimate + correction; with the
// estimate's sign, at p + 2 words.
void apply_correction(ParallelContext parallel, BigFloat& r, BigFloatView estimate, BigFloatView correction,
                      Estimate side, std::uint64_t p);
// The perturbation of the elementary results.
void perturb(BigFloat& r, std::uint64_t p);
// e/2, one word lower; needs room for one word more.
void halve(ParallelContext parallel, BigFloat& e);
// A power of the radix comes out of the floating-point unit as the words 0, 1. Without the empty word
// it stays exact, and unperturbed, at every precision.
void drop_empty_words(BigFloat& start);

// Two transformed operands of one size at the start of a product scratch, and the scratch behind them.
class StepTransforms {
  public:
    StepTransforms(const char* function, const MultiplyContext& context, std::uint64_t convolution_words);

    BigFloatTransformR kept;
    BigFloatTransformR other;

    void transform_kept(BigFloatView operand) { kept.forward(rest_, parameters_, kept_buffer_, operand); }
    void transform_other(BigFloatView operand) { other.forward(rest_, parameters_, other_buffer_, operand); }
    // destination = kept^2, as multiply(); the other operand's buffer is used.
    void square_kept(BigFloat& destination, std::int64_t te, std::uint64_t p) {
        BigFloatTransformR::inverse_fsqr_kept(rest_, destination, kept, other_buffer_, te, p);
    }
    // destination = kept * other, words below te, at most p + 2 of them.
    void multiply(BigFloat& destination, std::int64_t te, std::uint64_t p) {
        BigFloatTransformR::inverse_fmul(rest_, destination, other, kept, te, p);
    }

  private:
    TransformParametersBox box_;
    const TransformParameters& parameters_;
    Word* kept_buffer_;
    MultiplyContext after_kept_;
    Word* other_buffer_;
    MultiplyContext rest_;
};

// Of all labels of the iterations.
constexpr console::Colour label_colour = 'Y';

// A label of a step: a text, and a precision in words behind it.
class StepLabel {
  public:
    StepLabel(Progress* progress, std::string_view text, std::uint64_t precision);
    ~StepLabel();
    StepLabel(const StepLabel&) = delete;
    StepLabel& operator=(const StepLabel&) = delete;

  private:
    Progress* progress_;
};

// One step of each iteration, p >= 1 (p >= 10 in the transform forms). The elementary ones improve r in
// place; the transform ones write r from the estimate, and `scratch` holds correction_words(p).
void reciprocal_step_E(const MultiplyContext& context, BigFloat& r, BigFloatView x, std::uint64_t p,
                       Word* scratch, std::uint64_t scratch_words);
void reciprocal_step_P(const MultiplyContext& context, BigFloat& r, BigFloatView estimate, BigFloatView x,
                       std::uint64_t p, Word* scratch, Progress* progress);
void inverse_square_root_step_E(const MultiplyContext& context, BigFloat& r, Word w, std::uint64_t p,
                                Word* scratch, std::uint64_t scratch_words);
void inverse_square_root_step_P(const MultiplyContext& context, BigFloat& r, BigFloatView estimate, Word w,
                                std::uint64_t p, Word* scratch, Progress* progress);
// q = a/b from the reciprocal r of b at p' words, for a != 0; `scratch` holds division_step_words(p).
void division_step(const MultiplyContext& context, BigFloat& q, BigFloatView a, BigFloatView b,
                   BigFloatView r, std::uint64_t p, Word* scratch, Progress* progress);

// A step's estimate and correction, elementary form.
constexpr std::uint64_t elementary_scratch_words(std::uint64_t p) {
    return p == 0 ? 0 : (estimate_precision(p) + 2) + (estimate_precision(p) + 3);
}
constexpr std::uint64_t correction_words(std::uint64_t p) {
    return estimate_precision(p) + 4;
}
// The quotient's estimate, and the product of estimate and divisor.
constexpr std::uint64_t division_step_words(std::uint64_t p) {
    return (estimate_precision(p) + 2) + (estimate_precision(p) + 5);
}

}  // namespace qmp::newton
