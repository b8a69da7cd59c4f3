#include "multiply/ntt32/ntt32_transform_parameters.h"

#include <cstring>

#include "errors/check.h"
#include "errors/fatal.h"
#include "multiply/coefficient_check.h"
#include "multiply/ntt32/ntt32_params.h"
#include "multiply/twiddle_set.h"

namespace qmp::ntt32 {
namespace {

std::uint32_t* as_rows(Word* buffer) {
    return reinterpret_cast<std::uint32_t*>(buffer);
}
const std::uint32_t* as_rows(const Word* buffer) {
    return reinterpret_cast<const std::uint32_t*>(buffer);
}

// 2^(g + s), by which a coefficient divided by 2^(32 (primes - 1)) is limited.
std::uint64_t coefficient_limit(const SizeParams& size) {
    constexpr std::uint32_t g[4] = {0, 2, 3, 3};  // of the multipliers 1, 3, 5, 7
    return std::uint64_t{1} << (g[size.multiplier / 2] + size.exponent);
}

}  // namespace

Ntt32TransformParameters::Ntt32TransformParameters(std::uint64_t n)
    : Ntt32TransformParameters(qmp::ntt32::ntt32_params(64 * n), n) {}

Ntt32TransformParameters::Ntt32TransformParameters(const SizeParams& size, std::uint64_t product_words)
    : plan_(size), product_words_(product_words) {
    convolution_bits = size.capacity_bits;
    operand_words = transformed_words(size);
    scratch_words = scratch_words_of(size);
}

void Ntt32TransformParameters::require_twiddles(const MultiplyContext& context) const {
    const std::uint64_t covered = context.twiddles ? context.twiddles->largest_product() : 0;
    if (covered >= product_words_) return;
    throw LimitExceededException("Ntt32TransformParameters::require_twiddles()", covered, product_words_);
}

void Ntt32TransformParameters::forward_bytes(const MultiplyContext& context, Word* transformed,
                                             const void* operand, std::uint64_t bytes) const {
    if (8 * bytes > convolution_bits) invalid_function_parameters("Ntt32TransformParameters::forward()");
    require_twiddles(context);
    forward_transform(context.parallel(), plan_, as_rows(transformed), operand, bytes);
}

void Ntt32TransformParameters::inverse_bytes(const MultiplyContext& context, Word* a, const Word* b,
                                             void* destination, std::uint64_t first,
                                             std::uint64_t end) const {
    const char* const function = "Ntt32TransformParameters::inverse_multiply()";
    if (first > end || 8 * end > convolution_bits) invalid_function_parameters(function);
    require_capacity(function, context.scratch_words, scratch_words);
    require_twiddles(context);
    multiply_and_inverse(context.parallel(), plan_, as_rows(a), as_rows(b));
    const std::uint64_t largest = recombine(context.parallel(), plan_, context.scratch, as_rows(a));
    check_coefficients(function, coefficient_limit(plan_.params), largest);
    std::memcpy(destination, reinterpret_cast<const unsigned char*>(context.scratch) + first, end - first);
}

void Ntt32TransformParameters::forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                                       std::uint64_t length) const {
    forward_bytes(context, transformed, operand, 8 * length);
}

void Ntt32TransformParameters::forward_for_square(const MultiplyContext& context, Word* transformed,
                                                  const Word* operand, std::uint64_t length) const {
    forward_bytes(context, transformed, operand, 8 * length);
}

void Ntt32TransformParameters::inverse_multiply(const MultiplyContext& context, Word* a, const Word* b,
                                                Word* destination, std::uint64_t first,
                                                std::uint64_t end) const {
    inverse_bytes(context, a, b, destination, 8 * first, 8 * end);
}

void Ntt32TransformParameters::inverse_square(const MultiplyContext& context, Word* a, Word* destination,
                                              std::uint64_t first, std::uint64_t end) const {
    inverse_bytes(context, a, a, destination, 8 * first, 8 * end);
}

bool Ntt32TransformParameters::compatible_with(const TransformParameters& other) const {
    const auto* same_kind = dynamic_cast<const Ntt32TransformParameters*>(&other);
    return same_kind != nullptr && same_kind->size() == size();
}

}  // namespace qmp::ntt32
