// Operands kept in transformed form, so that one forward transform serves several products.
//
// forward() may leave the last part of the transform to the first product, which does it on its way through
// memory. So products change the operand that they keep, though not its value.
#pragma once

#include <cstdint>

#include "multiply/transform_parameters.h"
#include "numbers/big_float.h"
#include "numbers/exact_float.h"

namespace qmp {

// A transformed BigFloat (its RAM form, "R"). The buffer and the parameter object belong to the caller
// and outlive it.
class BigFloatTransformR {
  public:
    const TransformParameters* parameters = nullptr;
    Word* data = nullptr;  // null once consumed
    OperandState state = OperandState::whole;
    std::int64_t exp = 0;
    std::uint64_t L = 0;
    std::uint8_t sign = 1;

    // Transforms `source` (at most the convolution's length) into `buffer`, which holds
    // parameters.operand_words.
    void forward(const MultiplyContext& context, const TransformParameters& transform, Word* buffer,
                 BigFloatView source);
    void forward_for_square(const MultiplyContext& context, const TransformParameters& transform,
                            Word* buffer, BigFloatView source);

    // destination = a * b, of which the words from position te upward are not wanted (the caller knows
    // them or needs none): at most p + 2 words below te. When the product is longer than the convolution by
    // w words, only its words w to n - w are valid and the rest is not delivered. `a` is consumed. The
    // run stops when the parameter objects do not match, or when te asks for words that wrapped around.
    // Capacity needed: the words delivered. Scratch: parameters.scratch_words.
    static void inverse_fmul(const MultiplyContext& context, BigFloat& destination, BigFloatTransformR& a,
                             BigFloatTransformR& b, std::int64_t te, std::uint64_t p);
    static void inverse_fsqr(const MultiplyContext& context, BigFloat& destination, BigFloatTransformR& a,
                             std::int64_t te, std::uint64_t p);
    // The square of a forward()-transformed operand that is kept; `space` holds parameters.operand_words.
    static void inverse_fsqr_kept(const MultiplyContext& context, BigFloat& destination,
                                  BigFloatTransformR& a, Word* space, std::int64_t te, std::uint64_t p);
};

// A transformed ExactFloat: carries the check value instead of a sign.
class ExactFloatTransformR {
  public:
    const TransformParameters* parameters = nullptr;
    Word* data = nullptr;
    OperandState state = OperandState::whole;
    std::int64_t exp = 0;
    std::uint64_t L = 0;
    std::uint64_t hash = 0;

    void forward(const MultiplyContext& context, const TransformParameters& transform, Word* buffer,
                 ExactFloatView source);
    void forward_for_square(const MultiplyContext& context, const TransformParameters& transform,
                            Word* buffer, ExactFloatView source);

    // The full product. InvalidParametersException when the objects do not match or the convolution is too
    // short. `a` is consumed.
    static void inverse_fmul(const MultiplyContext& context, ExactFloat& destination, ExactFloatTransformR& a,
                             ExactFloatTransformR& b);
    // The same words with the exponent given by the caller; the check value is that of the value so denoted.
    static void inverse_fmul(const MultiplyContext& context, ExactFloat& destination, ExactFloatTransformR& a,
                             ExactFloatTransformR& b, std::int64_t exp);
    static void inverse_fsqr(const MultiplyContext& context, ExactFloat& destination,
                             ExactFloatTransformR& a);
    // The same with `a` kept; `space` is another operand's buffer, which is overwritten.
    static void inverse_fsqr_kept(const MultiplyContext& context, ExactFloat& destination,
                                  ExactFloatTransformR& a, Word* space);
};

}  // namespace qmp
