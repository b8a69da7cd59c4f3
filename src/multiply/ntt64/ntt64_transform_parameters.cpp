#include "multiply/ntt64/ntt64_transform_parameters.h"

#include <algorithm>
#include <cstring>

#include "errors/check.h"
#include "errors/fatal.h"
#include "multiply/ntt64/merge.h"
#include "multiply/ntt64/ntt64_params.h"
#include "multiply/ntt64/transform.h"
#include "multiply/twiddle_set.h"

namespace qmp::ntt64 {
namespace {

void require_size(const SizeParams& size) {
    const bool has_primes = size.primes >= fewest_primes && size.primes <= most_primes;
    const bool has_length =
        size.multiplier % 2 != 0 && size.multiplier <= 7 && size.exponent >= fewest_exponent;
    if (has_primes && has_length && size == limit_tables.size(size.primes, size.multiplier, size.exponent)) {
        return;
    }
    throw InvalidParametersException("Ntt64TransformParameters::Ntt64TransformParameters()",
                                     "Invalid Parameters");
}

// Roots and column buffers, or the whole product with what merging needs; one after the other.
std::uint64_t scratch_words_of(const Plan& plan) {
    const std::uint64_t product = (plan.size.capacity_bits / 64 + 7) / 8 * 8;
    return std::max(plan.scratch_words(), product + merge_scratch_words);
}

}  // namespace

Ntt64TransformParameters::Ntt64TransformParameters(std::uint64_t n)
    : Ntt64TransformParameters(ntt64_params(64 * n), n) {}

Ntt64TransformParameters::Ntt64TransformParameters(const SizeParams& size, std::uint64_t product_words)
    : size_(size), product_words_(product_words) {
    require_size(size);
    const Plan plan(size, false);
    convolution_bits = size.capacity_bits;
    operand_words = size.primes * plan.points;
    scratch_words = scratch_words_of(plan);
}

void Ntt64TransformParameters::require_twiddles(const MultiplyContext& context) const {
    const std::uint64_t covered = context.twiddles ? context.twiddles->largest_product() : 0;
    if (covered >= product_words_) return;
    throw LimitExceededException("Ntt64TransformParameters::require_twiddles()", covered, product_words_);
}

void Ntt64TransformParameters::transform(const MultiplyContext& context, bool negacyclic, Word* transformed,
                                         const void* operand, std::uint64_t bytes) const {
    if (bytes > convolution_bits / 8) invalid_function_parameters("Ntt64TransformParameters::forward()");
    require_capacity("Ntt64TransformParameters::forward()", context.scratch_words, scratch_words);
    require_twiddles(context);
    forward_transform(context.parallel(), Plan(size_, negacyclic), transformed, operand, bytes,
                      context.scratch);
}

bool Ntt64TransformParameters::inverse(const MultiplyContext& context, bool negacyclic, Word* a,
                                       const Word* b, Word* product, Word* scratch) const {
    const Plan plan(size_, negacyclic);
    inverse_transform(context.parallel(), plan, a, b, context.scratch);
    return merge_coefficients(context.parallel(), plan, "Ntt64TransformParameters::inverse_multiply()",
                              product, a, scratch);
}

void Ntt64TransformParameters::forward_bytes(const MultiplyContext& context, Word* transformed,
                                             const void* operand, std::uint64_t bytes) const {
    transform(context, false, transformed, operand, bytes);
}

void Ntt64TransformParameters::inverse_bytes(const MultiplyContext& context, Word* a, const Word* b,
                                             void* destination, std::uint64_t first,
                                             std::uint64_t end) const {
    if (first > end || end > convolution_bits / 8) {
        invalid_function_parameters("Ntt64TransformParameters::inverse_multiply()");
    }
    require_capacity("Ntt64TransformParameters::inverse_multiply()", context.scratch_words, scratch_words);
    require_twiddles(context);
    Word* product = context.scratch + merge_scratch_words;
    inverse(context, false, a, b, product, context.scratch);
    std::memcpy(destination, reinterpret_cast<const unsigned char*>(product) + first, end - first);
}

void Ntt64TransformParameters::forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                                       std::uint64_t length) const {
    transform(context, false, transformed, operand, 8 * length);
}

void Ntt64TransformParameters::forward_for_square(const MultiplyContext& context, Word* transformed,
                                                  const Word* operand, std::uint64_t length) const {
    transform(context, false, transformed, operand, 8 * length);
}

void Ntt64TransformParameters::inverse_multiply(const MultiplyContext& context, Word* a, const Word* b,
                                                Word* destination, std::uint64_t first,
                                                std::uint64_t end) const {
    inverse_bytes(context, a, b, destination, 8 * first, 8 * end);
}

void Ntt64TransformParameters::inverse_square(const MultiplyContext& context, Word* a, Word* destination,
                                              std::uint64_t first, std::uint64_t end) const {
    inverse_bytes(context, a, a, destination, 8 * first, 8 * end);
}

bool Ntt64TransformParameters::compatible_with(const TransformParameters& other) const {
    const auto* same_kind = dynamic_cast<const Ntt64TransformParameters*>(&other);
    return same_kind != nullptr && same_kind->size_ == size_;
}

void Ntt64TransformParameters::forward_negacyclic(const MultiplyContext& context, Word* transformed,
                                                  const Word* operand, std::uint64_t length) const {
    transform(context, true, transformed, operand, 8 * length);
}

bool Ntt64TransformParameters::inverse_multiply_negacyclic(const MultiplyContext& context, Word* a,
                                                           const Word* b, Word* destination) const {
    require_capacity("Ntt64TransformParameters::inverse_multiply_negacyclic()", context.scratch_words,
                     scratch_words);
    require_twiddles(context);
    return inverse(context, true, a, b, destination, context.scratch);
}

std::uint64_t product_scratch_words(const SizeParams& size) {
    const Plan plan(size, false);
    return 2 * size.primes * plan.points + scratch_words_of(plan);
}

}  // namespace qmp::ntt64
