#include "multiply/fft/fft_transform_parameters.h"

#include <cstring>

#include "errors/check.h"
#include "errors/fatal.h"
#include "multiply/fft/transform.h"
#include "multiply/twiddle_set.h"

namespace qmp::fft {
namespace {

// The table of the size's multiplier, or null when the context has none that is long enough.
const TwiddleTable* covering_table(const MultiplyContext& context, const FftParams& params) {
    const TwiddleTable* table = context.twiddles ? context.twiddles->table(params.r) : nullptr;
    return table && table->exponent() >= params.k ? table : nullptr;
}

double* as_points(Word* buffer) {
    return reinterpret_cast<double*>(buffer);
}
const double* as_points(const Word* buffer) {
    return reinterpret_cast<const double*>(buffer);
}

}  // namespace

FftTransformParameters::FftTransformParameters(std::uint64_t n) : params_(qmp::fft::fft_params(64 * n)) {
    convolution_bits = 64 * n;
    operand_words = params_.points;
    scratch_words = params_.points / 2;
}

void FftTransformParameters::require_twiddles(const MultiplyContext& context) const {
    if (covering_table(context, params_)) return;
    throw LimitExceededException("FftTransformParameters::require_twiddles()",
                                 context.twiddles ? context.twiddles->largest_product() : 0,
                                 convolution_words());
}

void FftTransformParameters::forward_bytes(const MultiplyContext& context, Word* transformed,
                                           const void* operand, std::uint64_t bytes) const {
    if (8 * bytes > convolution_bits) invalid_function_parameters("FftTransformParameters::forward()");
    require_twiddles(context);
    const Plan plan(params_, *covering_table(context, params_));
    transform_operand(context.parallel(), plan, as_points(transformed), operand, bytes);
}

void FftTransformParameters::inverse_bytes(const MultiplyContext& context, Word* a, const Word* b,
                                           void* destination, std::uint64_t first, std::uint64_t end) const {
    if (first > end || 8 * end > convolution_bits) {
        invalid_function_parameters("FftTransformParameters::inverse_multiply()");
    }
    require_capacity("FftTransformParameters::inverse_multiply()", context.scratch_words, scratch_words);
    require_twiddles(context);
    const Plan plan(params_, *covering_table(context, params_));
    const ParallelContext parallel = context.parallel();
    double* points = as_points(a);

    const double shift = coefficient_shift(plan, points, as_points(b));
    pointwise_product(parallel, plan, points, as_points(b));
    inverse_transform(parallel, plan, points);
    // The product takes less than two thirds of the scratch (b <= 21 bits of the 32 of a point); its
    // carries, a word for 64 points, stand behind it.
    Word* product = context.scratch;
    merge_points(parallel, plan, product, product + params_.capacity_bits / 64, points, shift);
    std::memcpy(destination, reinterpret_cast<const unsigned char*>(product) + first, end - first);
}

void FftTransformParameters::forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                                     std::uint64_t length) const {
    forward_bytes(context, transformed, operand, 8 * length);
}

void FftTransformParameters::forward_for_square(const MultiplyContext& context, Word* transformed,
                                                const Word* operand, std::uint64_t length) const {
    forward_bytes(context, transformed, operand, 8 * length);
}

void FftTransformParameters::inverse_multiply(const MultiplyContext& context, Word* a, const Word* b,
                                              Word* destination, std::uint64_t first,
                                              std::uint64_t end) const {
    inverse_bytes(context, a, b, destination, 8 * first, 8 * end);
}

void FftTransformParameters::inverse_square(const MultiplyContext& context, Word* a, Word* destination,
                                            std::uint64_t first, std::uint64_t end) const {
    inverse_bytes(context, a, a, destination, 8 * first, 8 * end);
}

bool FftTransformParameters::compatible_with(const TransformParameters& other) const {
    const auto* same_kind = dynamic_cast<const FftTransformParameters*>(&other);
    return same_kind != nullptr && same_kind->params_ == params_;
}

}  // namespace qmp::fft
