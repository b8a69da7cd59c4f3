// What the algorithms that transform whole operands have in common: every kind of product is a range of the
// bytes of one, whatever the words.
#pragma once

#include "errors/check.h"
#include "multiply/algorithm.h"

namespace qmp {

// Names of an algorithm's operations in its exceptions.
struct ProductNames {
    const char* multiply;
    const char* upper_product;
    const char* upper_square;
};

template <typename W>
class TransformAlgorithm : public WordAlgorithm<W> {
  public:
    void multiply(const MultiplyContext& context, W* destination, const W* a, std::uint64_t la, const W* b,
                  std::uint64_t lb) const final {
        product(names_.multiply, context, destination, 0, bytes(la + lb), a, bytes(la), b, bytes(lb));
    }
    void upper_product(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                       const W* a, std::uint64_t la, const W* b, std::uint64_t lb) const final {
        product(names_.upper_product, context, destination, bytes(skip), bytes(end), a, bytes(la), b,
                bytes(lb));
    }
    void upper_square(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                      const W* a, std::uint64_t la) const final {
        product(names_.upper_square, context, destination, bytes(skip), bytes(end), a, bytes(la), a,
                bytes(la));
    }
    using WordAlgorithm<W>::construct;

  protected:
    TransformAlgorithm(const ProductNames& names, std::uint64_t bits, const char* k, const char* n,
                       const char* v, const char* d)
        : WordAlgorithm<W>(bits, k, n, v, d), names_(names) {}

    static constexpr std::uint64_t bytes(std::uint64_t words) { return sizeof(W) * words; }
    static constexpr std::uint64_t words_of_64_bits(std::uint64_t bytes) { return (bytes + 7) / 8; }

    // The bytes [first, end) of a * b; a square when the operands are the same bytes.
    virtual void product(const char* function, const MultiplyContext& context, void* destination,
                         std::uint64_t first, std::uint64_t end, const void* a, std::uint64_t bytes_a,
                         const void* b, std::uint64_t bytes_b) const = 0;

  private:
    ProductNames names_;
};

// A product by the operations of a parameter object that works on bytes: both operands forward, and the
// product back. Takes two transformed operands and `scratch_words` of the context's scratch.
template <typename Parameters>
void product_by(const Parameters& parameters, std::uint64_t scratch_words, const char* function,
                const MultiplyContext& context, void* destination, std::uint64_t first, std::uint64_t end,
                const void* a, std::uint64_t bytes_a, const void* b, std::uint64_t bytes_b) {
    parameters.require_twiddles(context);
    const std::uint64_t operand = parameters.operand_words;
    require_capacity(function, context.scratch_words, 2 * operand + scratch_words);
    const bool square = a == b && bytes_a == bytes_b;
    Word* transformed_a = context.scratch;
    Word* transformed_b = square ? transformed_a : transformed_a + operand;
    const MultiplyContext inner = context.after(2 * operand, function);

    parameters.forward_bytes(inner, transformed_a, a, bytes_a);
    if (!square) parameters.forward_bytes(inner, transformed_b, b, bytes_b);
    parameters.inverse_bytes(inner, transformed_a, transformed_b, destination, first, end);
}

}  // namespace qmp
