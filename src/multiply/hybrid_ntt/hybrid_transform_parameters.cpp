#include "multiply/hybrid_ntt/hybrid_transform_parameters.h"

#include <cstring>

#include "errors/check.h"
#include "errors/fatal.h"
#include "multiply/coefficient_check.h"
#include "multiply/twiddle_set.h"

namespace qmp::hybrid_ntt {

HybridTransformParameters::HybridTransformParameters(std::uint64_t n)
    : HybridTransformParameters(qmp::hybrid_ntt::hybrid_params(64 * n), n) {}

HybridTransformParameters::HybridTransformParameters(const HybridParams& size, std::uint64_t product_words)
    : plan_(size), product_words_(product_words) {
    convolution_bits = size.capacity_bits;
    operand_words = (plan_.transformed_words() + 7) / 8 * 8;
    scratch_words = plan_.scratch_words();
}

void HybridTransformParameters::require_twiddles(const MultiplyContext& context) const {
    const std::uint64_t covered = context.twiddles ? context.twiddles->largest_product() : 0;
    if (covered >= product_words_) return;
    throw LimitExceededException("HybridTransformParameters::require_twiddles()", covered, product_words_);
}

void HybridTransformParameters::forward_bytes(const MultiplyContext& context, Word* transformed,
                                              const void* operand, std::uint64_t bytes) const {
    const char* const function = "HybridTransformParameters::forward()";
    if (8 * bytes > convolution_bits) invalid_function_parameters(function);
    require_capacity(function, context.scratch_words, scratch_words);
    require_twiddles(context);
    forward_transform(context, plan_, transformed, operand, bytes);
}

void HybridTransformParameters::inverse_bytes(const MultiplyContext& context, Word* a, const Word* b,
                                              void* destination, std::uint64_t first,
                                              std::uint64_t end) const {
    const char* const function = "HybridTransformParameters::inverse_multiply()";
    if (first > end || 8 * end > convolution_bits) invalid_function_parameters(function);
    require_capacity(function, context.scratch_words, scratch_words);
    require_twiddles(context);
    multiply_and_inverse(context, plan_, a, b);
    const std::uint64_t largest = recombine(context, plan_, a);
    check_coefficients(function, std::uint64_t{1} << plan_.k(), largest);
    std::memcpy(destination, reinterpret_cast<const unsigned char*>(context.scratch) + first, end - first);
}

void HybridTransformParameters::forward(const MultiplyContext& context, Word* transformed,
                                        const Word* operand, std::uint64_t length) const {
    forward_bytes(context, transformed, operand, 8 * length);
}

void HybridTransformParameters::forward_for_square(const MultiplyContext& context, Word* transformed,
                                                   const Word* operand, std::uint64_t length) const {
    forward_bytes(context, transformed, operand, 8 * length);
}

void HybridTransformParameters::inverse_multiply(const MultiplyContext& context, Word* a, const Word* b,
                                                 Word* destination, std::uint64_t first,
                                                 std::uint64_t end) const {
    inverse_bytes(context, a, b, destination, 8 * first, 8 * end);
}

void HybridTransformParameters::inverse_square(const MultiplyContext& context, Word* a, Word* destination,
                                               std::uint64_t first, std::uint64_t end) const {
    inverse_bytes(context, a, a, destination, 8 * first, 8 * end);
}

bool HybridTransformParameters::compatible_with(const TransformParameters& other) const {
    const auto* same_kind = dynamic_cast<const HybridTransformParameters*>(&other);
    return same_kind != nullptr && same_kind->size() == size();
}

}  // namespace qmp::hybrid_ntt
