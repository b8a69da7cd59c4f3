#include "multiply/basecase/basecase_parameters.h"

#include <cstring>

#include "errors/check.h"
#include "errors/fatal.h"
#include "multiply/basecase/word_kernels.h"

namespace qmp::basecase {
namespace {

// A transformed operand: the length, then the words.
template <typename W>
const W* words_of(const Word* transformed) {
    return reinterpret_cast<const W*>(transformed + 1);
}

}  // namespace

template <typename W>
BasecaseParameters<W>::BasecaseParameters(std::uint64_t n) {
    convolution_bits = 64 * n;
    operand_words = align64(8 * n + 8) / 8;
    scratch_words = words_for_bytes(parameter_scratch_bytes<W>(n * ratio));
}

template <typename W>
void BasecaseParameters<W>::forward(const MultiplyContext&, Word* transformed, const Word* operand,
                                    std::uint64_t length) const {
    if (length > convolution_words()) invalid_function_parameters("BasecaseKaratsuba::forward()");
    transformed[0] = length;
    if (length > 0) std::memcpy(transformed + 1, operand, length * sizeof(Word));
}

template <typename W>
void BasecaseParameters<W>::forward_for_square(const MultiplyContext& context, Word* transformed,
                                               const Word* operand, std::uint64_t length) const {
    forward(context, transformed, operand, length);
}

template <typename W>
void BasecaseParameters<W>::inverse_multiply(const MultiplyContext& context, Word* a, const Word* b,
                                             Word* destination, std::uint64_t first,
                                             std::uint64_t end) const {
    const std::uint64_t la = a[0];
    const std::uint64_t lb = b[0];
    if (la == 0 || lb == 0) return std::fill(destination, destination + (end - first), Word{0});
    const std::uint64_t n = (la + lb) * ratio;
    W* product = take_scratch(context, "BasecaseKaratsuba::inverse_multiply()", n,
                              mulK_scratch<W>(la * ratio, lb * ratio));
    mulK(product, words_of<W>(a), la * ratio, words_of<W>(b), lb * ratio, product + n);
    deliver(product, la + lb, destination, first, end);
}

template <typename W>
void BasecaseParameters<W>::inverse_square(const MultiplyContext& context, Word* a, Word* destination,
                                           std::uint64_t first, std::uint64_t end) const {
    const std::uint64_t la = a[0];
    if (la == 0) return std::fill(destination, destination + (end - first), Word{0});
    const std::uint64_t n = 2 * la * ratio;
    W* product = take_scratch(context, "BasecaseKaratsuba::inverse_square()", n, sqrK_scratch<W>(la * ratio));
    sqrK(product, words_of<W>(a), la * ratio, product + n);
    deliver(product, 2 * la, destination, first, end);
}

template <typename W>
bool BasecaseParameters<W>::compatible_with(const TransformParameters& other) const {
    return dynamic_cast<const BasecaseParameters*>(&other) != nullptr;
}

template <typename W>
W* BasecaseParameters<W>::take_scratch(const MultiplyContext& context, const char* function,
                                       std::uint64_t product_words, std::uint64_t recursion_words) const {
    // Operands that a longer, compatible object transformed may need more than this object's own scratch.
    const std::uint64_t needed =
        std::max(scratch_words, words_for_bytes((product_words + recursion_words) * sizeof(W)));
    require_capacity(function, context.scratch_words, needed);
    return reinterpret_cast<W*>(context.scratch);
}

template <typename W>
void BasecaseParameters<W>::deliver(W* product, std::uint64_t length, Word* destination, std::uint64_t first,
                                    std::uint64_t end) const {
    const std::uint64_t n = convolution_words();
    if (length > n) {
        const std::uint64_t wrapped = std::min(length - n, n) * ratio;
        add_words(product, product, product + n * ratio, wrapped);
    }
    const std::uint64_t stop = std::clamp(std::min(length, n), first, end);
    if (stop > first) std::memcpy(destination, product + first * ratio, (stop - first) * sizeof(Word));
    std::fill(destination + (stop - first), destination + (end - first), Word{0});
}

template class BasecaseParameters<std::uint64_t>;
template class BasecaseParameters<std::uint32_t>;

}  // namespace qmp::basecase
