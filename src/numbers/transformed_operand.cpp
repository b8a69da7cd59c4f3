#include "numbers/transformed_operand.h"

#include <algorithm>

#include "console/console.h"
#include "console/format.h"
#include "errors/check.h"
#include "errors/fatal.h"
#include "numbers/big_float_window.h"

namespace qmp {
namespace {

// The words of a product that the convolution delivers and the caller wants; none when the count is 0.
struct Window {
    std::uint64_t first;  // in the product
    std::uint64_t count;
    std::int64_t bottom;  // the absolute position of the first
};

// The product has n words from position `exponent` upward.
Window wanted_window(const char* truncated_range, std::uint64_t n, std::uint64_t convolution_words,
                     std::int64_t exponent, std::int64_t te, std::uint64_t p) {
    // The top words of a longer product were added to its lowest ones: neither are valid.
    const std::uint64_t wrapped = n > convolution_words ? n - convolution_words : 0;
    std::int64_t bottom = exponent + static_cast<std::int64_t>(wrapped);
    const std::int64_t ie = exponent + static_cast<std::int64_t>(n - wrapped);
    if (ie < te && wrapped > 0) {
        console::println("ie = " + console::format_signed(ie));
        console::println("te = " + console::format_signed(te));
        console::fatal_error(truncated_range);
    }
    if (te <= bottom) return {0, 0, 0};
    bottom = te - static_cast<std::int64_t>(kept_words(p, static_cast<std::uint64_t>(te - bottom)));
    const std::int64_t end = std::min(ie, te);
    // With te far above a whole product, the words kept below te are above all of it.
    if (end <= bottom) return {0, 0, 0};
    return {static_cast<std::uint64_t>(bottom - exponent), static_cast<std::uint64_t>(end - bottom), bottom};
}

void finish(BigFloat& destination, const Window& window, std::uint8_t sign) {
    destination.L = window.count;
    destination.exp = window.bottom;
    destination.sign = sign;
    strip_top_zeros(destination);
}

// Of a square, with the destination ready for it.
Window square_window(const char* function, const char* truncated_range, const BigFloatTransformR& a,
                     BigFloat& destination, std::int64_t te, std::uint64_t p) {
    if (!a.data) invalid_function_parameters(function);
    const Window window =
        wanted_window(truncated_range, 2 * a.L, a.parameters->convolution_words(), 2 * a.exp, te, p);
    require_capacity(function, destination.AL, window.count);
    destination.T = destination.base;
    return window;
}

void describe(BigFloatTransformR& operand, const TransformParameters& transform, Word* buffer,
              BigFloatView source) {
    operand.parameters = &transform;
    operand.data = buffer;
    operand.state = OperandState::whole;
    operand.exp = source.exp;
    operand.L = source.L;
    operand.sign = source.sign;
}

}  // namespace

void BigFloatTransformR::forward(const MultiplyContext& context, const TransformParameters& transform,
                                 Word* buffer, BigFloatView source) {
    if (source.L > transform.convolution_words())
        invalid_function_parameters("BigFloatTransformR::forward()");
    describe(*this, transform, buffer, source);
    state = transform.begin_forward(context, buffer, source.T, source.L);
}

void BigFloatTransformR::forward_for_square(const MultiplyContext& context,
                                            const TransformParameters& transform, Word* buffer,
                                            BigFloatView source) {
    if (source.L > transform.convolution_words()) {
        invalid_function_parameters("BigFloatTransformR::forward_for_square()");
    }
    transform.forward_for_square(context, buffer, source.T, source.L);
    describe(*this, transform, buffer, source);
}

void BigFloatTransformR::inverse_fmul(const MultiplyContext& context, BigFloat& destination,
                                      BigFloatTransformR& a, BigFloatTransformR& b, std::int64_t te,
                                      std::uint64_t p) {
    const char* function = "BigFloatTransformR::inverse_fmul()";
    if (!a.data || !b.data) invalid_function_parameters(function);
    if (a.parameters != b.parameters && !a.parameters->compatible_with(*b.parameters)) {
        console::fatal_error("BigFloatTransformR::inverse_fmul(): Mismatching Transform Parameters");
    }
    const Window window = wanted_window("BigFloatTransformR::inverse_fmul(): Truncated Range\n\n", a.L + b.L,
                                        a.parameters->convolution_words(), a.exp + b.exp, te, p);
    require_capacity(function, destination.AL, window.count);
    destination.T = destination.base;
    if (window.count > 0) {
        a.parameters->finish_multiply(context, a.data, a.state, b.data, b.state, destination.T, window.first,
                                      window.first + window.count);
        b.state = OperandState::whole;
    }
    finish(destination, window, a.sign == b.sign ? 1 : 0);
    a.data = nullptr;
}

void BigFloatTransformR::inverse_fsqr(const MultiplyContext& context, BigFloat& destination,
                                      BigFloatTransformR& a, std::int64_t te, std::uint64_t p) {
    constexpr const char* function = "BigFloatTransformR::inverse_fsqr()";
    const Window window = square_window(function, "BigFloatTransformR::inverse_fsqr(): Truncated Range\n\n",
                                        a, destination, te, p);
    const std::uint64_t end = window.first + window.count;
    if (window.count > 0 && a.state == OperandState::begun) {
        a.parameters->finish_multiply(context, a.data, a.state, a.data, a.state, destination.T, window.first,
                                      end);
    } else if (window.count > 0) {
        a.parameters->inverse_square(context, a.data, destination.T, window.first, end);
    }
    finish(destination, window, 1);
    a.data = nullptr;
}

void BigFloatTransformR::inverse_fsqr_kept(const MultiplyContext& context, BigFloat& destination,
                                           BigFloatTransformR& a, Word* space, std::int64_t te,
                                           std::uint64_t p) {
    constexpr const char* function = "BigFloatTransformR::inverse_fsqr_kept()";
    const Window window = square_window(
        function, "BigFloatTransformR::inverse_fsqr_kept(): Truncated Range\n\n", a, destination, te, p);
    if (window.count > 0) {
        a.parameters->finish_square(context, space, a.data, a.state, destination.T, window.first,
                                    window.first + window.count);
        a.state = OperandState::whole;
    }
    finish(destination, window, 1);
}

}  // namespace qmp
