#include "multiply/vst/vst_transform_parameters.h"

#include <algorithm>

#include "errors/check.h"
#include "errors/fatal.h"

namespace qmp::vst {
namespace {

double* as_matrix(Word* buffer) {
    return reinterpret_cast<double*>(buffer);
}

}  // namespace

VstTransformParameters::VstTransformParameters(const SizeParams& size) : plan_(size) {
    convolution_bits = size.capacity_bits;
    operand_words = plan_.operand_words();
    scratch_words = plan_.scratch_words(1);
}

void VstTransformParameters::transform(const char* function, const MultiplyContext& context,
                                       Word* transformed, const Word* operand, std::uint64_t length,
                                       bool negacyclic) const {
    if (length > convolution_words()) invalid_function_parameters(function);
    const Transform transform(function, plan_, negacyclic, context);
    double* matrix = as_matrix(transformed);
    transform.split(matrix, operand, length * sizeof(Word));
    transform.rows(transform.all_primes(), matrix, matrix, {true, false, false});
}

void VstTransformParameters::forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                                     std::uint64_t length) const {
    transform("VstTransformParameters::forward()", context, transformed, operand, length, false);
}

void VstTransformParameters::forward_for_square(const MultiplyContext& context, Word* transformed,
                                                const Word* operand, std::uint64_t length) const {
    transform("VstTransformParameters::forward_for_square()", context, transformed, operand, length, false);
}

void VstTransformParameters::forward_negacyclic(const MultiplyContext& context, Word* transformed,
                                                const Word* operand, std::uint64_t length) const {
    transform("VstTransformParameters::forward_negacyclic()", context, transformed, operand, length, true);
}

OperandState VstTransformParameters::begin_forward(const MultiplyContext& context, Word* transformed,
                                                   const Word* operand, std::uint64_t length) const {
    constexpr const char* function = "VstTransformParameters::begin_forward()";
    if (length > convolution_words()) invalid_function_parameters(function);
    Transform(function, plan_, false, context).split(as_matrix(transformed), operand, length * sizeof(Word));
    return OperandState::begun;
}

void VstTransformParameters::multiply(const char* function, const MultiplyContext& context, Word* a, Word* b,
                                      Transform::RowWork work, Word* destination, std::uint64_t first,
                                      std::uint64_t end) const {
    if (first > end || end > convolution_words()) invalid_function_parameters(function);
    const Transform transform(function, plan_, false, context);
    transform.rows(transform.all_primes(), as_matrix(a), as_matrix(b), work);
    transform.merge(reinterpret_cast<unsigned char*>(destination), first * sizeof(Word), end * sizeof(Word),
                    as_matrix(a));
}

void VstTransformParameters::finish_multiply(const MultiplyContext& context, Word* a, OperandState state_a,
                                             Word* b, OperandState state_b, Word* destination,
                                             std::uint64_t first, std::uint64_t end) const {
    const bool transform_b = a != b && state_b == OperandState::begun;
    multiply("VstTransformParameters::finish_multiply()", context, a, b,
             {state_a == OperandState::begun, transform_b, true}, destination, first, end);
}

void VstTransformParameters::finish_square(const MultiplyContext& context, Word* space, Word* a,
                                           OperandState state, Word* destination, std::uint64_t first,
                                           std::uint64_t end) const {
    multiply("VstTransformParameters::finish_square()", context, space, a,
             {false, state == OperandState::begun, true, true}, destination, first, end);
}

void VstTransformParameters::inverse_multiply(const MultiplyContext& context, Word* a, const Word* b,
                                              Word* destination, std::uint64_t first,
                                              std::uint64_t end) const {
    // A whole operand is only read.
    multiply("VstTransformParameters::inverse_multiply()", context, a, const_cast<Word*>(b),
             {false, false, true}, destination, first, end);
}

void VstTransformParameters::inverse_square(const MultiplyContext& context, Word* a, Word* destination,
                                            std::uint64_t first, std::uint64_t end) const {
    inverse_multiply(context, a, a, destination, first, end);
}

bool VstTransformParameters::inverse_multiply_negacyclic(const MultiplyContext& context, Word* a,
                                                         const Word* b, Word* destination) const {
    const Transform transform("VstTransformParameters::inverse_multiply_negacyclic()", plan_, true, context);
    transform.rows(transform.all_primes(), as_matrix(a), as_matrix(const_cast<Word*>(b)),
                   {false, false, true});
    return transform.merge_negacyclic(reinterpret_cast<unsigned char*>(destination), as_matrix(a));
}

bool VstTransformParameters::compatible_with(const TransformParameters& other) const {
    const auto* vst = dynamic_cast<const VstTransformParameters*>(&other);
    return vst && vst->plan_.size == plan_.size;
}

void VstTransformParameters::product(const char* function, const MultiplyContext& context, void* destination,
                                     std::uint64_t first, std::uint64_t end, const void* a,
                                     std::uint64_t bytes_a, const void* b, std::uint64_t bytes_b) const {
    const bool square = a == b && bytes_a == bytes_b;
    const MultiplyContext inner = context.after((square ? 1 : 2) * operand_words, function);
    double* matrix_a = as_matrix(context.scratch);
    double* matrix_b = square ? matrix_a : matrix_a + operand_words;
    const Transform transform(function, plan_, false, inner);
    if (square) {
        transform.split(matrix_a, a, bytes_a);
        transform.rows(transform.all_primes(), matrix_a, matrix_a, {true, false, true});
    } else {
        // The second operand's matrices are used up at once, and its memory serves for the next primes.
        const std::uint32_t step = plan_.primes_at_a_time(transform.tasks());
        for (std::uint32_t prime = 0; prime < plan_.primes(); prime += step) {
            const Transform::PrimeRange range{prime, std::min(prime + step, plan_.primes())};
            double* matrices_a = matrix_a + prime * plan_.prime_stride;
            transform.split(range, matrices_a, a, bytes_a, matrix_b, b, bytes_b);
            transform.rows(range, matrices_a, matrix_b, {true, true, true});
        }
    }
    transform.merge(static_cast<unsigned char*>(destination), first, end, matrix_a);
}

}  // namespace qmp::vst
