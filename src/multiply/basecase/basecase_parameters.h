// One convolution length of the basecase algorithm. See basecase_algorithm.h for what it promises.
#pragma once

#include <algorithm>
#include <cstdint>

#include "multiply/basecase/double_word.h"
#include "multiply/basecase/karatsuba.h"
#include "multiply/transform_parameters.h"

namespace qmp::basecase {

constexpr std::uint64_t align64(std::uint64_t bytes) {
    return (bytes + 63) / 64 * 64;
}
constexpr std::uint64_t words_for_bytes(std::uint64_t bytes) {
    return (bytes + 7) / 8;
}

// A product of two operands of n words of type W, and what forming it takes.
template <typename W>
std::uint64_t parameter_scratch_bytes(std::uint64_t n) {
    return karatsuba_scratch_bytes<W>(n) + 2 * sizeof(W) * n;
}

// The kernels run on words of type W. Caller's words are only ever copied as bytes, which is the same
// value for both word types on a little-endian machine.
template <typename W>
class BasecaseParameters final : public TransformParameters {
  public:
    // n in words of 64 bits.
    explicit BasecaseParameters(std::uint64_t n);

    void forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                 std::uint64_t length) const override;
    void forward_for_square(const MultiplyContext& context, Word* transformed, const Word* operand,
                            std::uint64_t length) const override;
    void inverse_multiply(const MultiplyContext& context, Word* a, const Word* b, Word* destination,
                          std::uint64_t first, std::uint64_t end) const override;
    void inverse_square(const MultiplyContext& context, Word* a, Word* destination, std::uint64_t first,
                        std::uint64_t end) const override;
    bool compatible_with(const TransformParameters& other) const override;

  private:
    static constexpr std::uint64_t ratio = 64 / WordTraits<W>::bits;

    W* take_scratch(const MultiplyContext& context, const char* function, std::uint64_t product_words,
                    std::uint64_t recursion_words) const;
    // Wraps a product of `length` words (of 64 bits) and delivers the wanted part.
    void deliver(W* product, std::uint64_t length, Word* destination, std::uint64_t first,
                 std::uint64_t end) const;
};

extern template class BasecaseParameters<std::uint64_t>;
extern template class BasecaseParameters<std::uint32_t>;

}  // namespace qmp::basecase
