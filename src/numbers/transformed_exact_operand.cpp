#include "errors/check.h"
#include "errors/exception.h"
#include "errors/fatal.h"
#include "numbers/check_value.h"
#include "numbers/transformed_operand.h"

namespace qmp {
namespace {

// What must hold before the whole product of n words can be formed.
void check_product(const char* function, const TransformParameters& transform, const ExactFloat& destination,
                   std::uint64_t n) {
    require_capacity(function, destination.AL, n);
    if (transform.convolution_bits < 64 * n) {
        throw InvalidParametersException(function, "Convolution length is too small.");
    }
}

void finish(ExactFloat& destination, std::uint64_t n, std::int64_t exp, std::uint64_t hash) {
    destination.L = destination.T[n - 1] == 0 ? n - 1 : n;
    destination.exp = exp;
    destination.hash = hash;
}

void multiply(const char* function, const MultiplyContext& context, ExactFloat& destination,
              ExactFloatTransformR& a, ExactFloatTransformR& b, std::int64_t exp, std::uint64_t hash) {
    if (!a.data || !b.data) invalid_function_parameters(function);
    if (a.parameters != b.parameters && !a.parameters->compatible_with(*b.parameters)) {
        throw InvalidParametersException(function, "Mismatching Transform Parameters");
    }
    const std::uint64_t n = a.L + b.L;
    check_product(function, *a.parameters, destination, n);
    destination.T = destination.base;
    a.parameters->finish_multiply(context, a.data, a.state, b.data, b.state, destination.T, 0, n);
    b.state = OperandState::whole;
    a.data = nullptr;
    finish(destination, n, exp, hash);
}

void describe(ExactFloatTransformR& operand, const TransformParameters& transform, Word* buffer,
              ExactFloatView source) {
    operand.parameters = &transform;
    operand.data = buffer;
    operand.state = OperandState::whole;
    operand.exp = source.exp;
    operand.L = source.L;
    operand.hash = source.hash;
}

}  // namespace

void ExactFloatTransformR::forward(const MultiplyContext& context, const TransformParameters& transform,
                                   Word* buffer, ExactFloatView source) {
    if (source.L > transform.convolution_words())
        invalid_function_parameters("ExactFloatTransformR::forward()");
    describe(*this, transform, buffer, source);
    state = transform.begin_forward(context, buffer, source.T, source.L);
}

void ExactFloatTransformR::forward_for_square(const MultiplyContext& context,
                                              const TransformParameters& transform, Word* buffer,
                                              ExactFloatView source) {
    if (source.L > transform.convolution_words()) {
        invalid_function_parameters("ExactFloatTransformR::forward_for_square()");
    }
    transform.forward_for_square(context, buffer, source.T, source.L);
    describe(*this, transform, buffer, source);
}

void ExactFloatTransformR::inverse_fmul(const MultiplyContext& context, ExactFloat& destination,
                                        ExactFloatTransformR& a, ExactFloatTransformR& b) {
    multiply("ExactFloatTransformR::inverse_fmul()", context, destination, a, b, a.exp + b.exp,
             check_mul(a.hash, b.hash));
}

void ExactFloatTransformR::inverse_fmul(const MultiplyContext& context, ExactFloat& destination,
                                        ExactFloatTransformR& a, ExactFloatTransformR& b, std::int64_t exp) {
    // The value moves by whole words, and its check value with it.
    const std::uint64_t weight = check_word_weight(exp - (a.exp + b.exp));
    multiply("ExactFloatTransformR::inverse_fmul(exp)", context, destination, a, b, exp,
             check_mul(check_mul(a.hash, b.hash), weight));
}

void ExactFloatTransformR::inverse_fsqr(const MultiplyContext& context, ExactFloat& destination,
                                        ExactFloatTransformR& a) {
    const char* function = "ExactFloatTransformR::inverse_fsqr()";
    if (!a.data) invalid_function_parameters(function);
    const std::uint64_t n = 2 * a.L;
    check_product(function, *a.parameters, destination, n);
    destination.T = destination.base;
    if (a.state == OperandState::begun) {
        a.parameters->finish_multiply(context, a.data, a.state, a.data, a.state, destination.T, 0, n);
    } else {
        a.parameters->inverse_square(context, a.data, destination.T, 0, n);
    }
    a.data = nullptr;
    finish(destination, n, 2 * a.exp, check_mul(a.hash, a.hash));
}

void ExactFloatTransformR::inverse_fsqr_kept(const MultiplyContext& context, ExactFloat& destination,
                                             ExactFloatTransformR& a, Word* space) {
    const char* function = "ExactFloatTransformR::inverse_fsqr_kept()";
    if (!a.data) invalid_function_parameters(function);
    const std::uint64_t n = 2 * a.L;
    check_product(function, *a.parameters, destination, n);
    destination.T = destination.base;
    a.parameters->finish_square(context, space, a.data, a.state, destination.T, 0, n);
    a.state = OperandState::whole;
    finish(destination, n, 2 * a.exp, check_mul(a.hash, a.hash));
}

}  // namespace qmp
