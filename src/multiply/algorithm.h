// What a multiplication algorithm offers. One object per algorithm and word kind, created on first use.
#pragma once

#include <cstdint>

#include "multiply/multiply_context.h"
#include "multiply/transform_parameters.h"
#include "multiply/word.h"

namespace qmp {

// What the registry and the tables know of an algorithm, whatever its words.
class Algorithm {
 public:
    virtual ~Algorithm() = default;

    std::uint64_t max_bits;   // largest product, in bits
    const char* key;          // three letters
    const char* name;
    const char* version;
    const char* description;

    // Scratch in bytes, with this many tasks, that covers each of these, n in words of the algorithm's kind:
    // - multiply, upper_product and upper_square of up to n words of (trimmed) product;
    // - with the parameter object of a convolution of n words: two transformed operands and the scratch of
    //   one operation, 2 * operand_words + scratch_words.
    // Non-decreasing in n. Every operation checks what it really needs (BufferTooSmallException).
    virtual std::uint64_t psize(std::uint64_t n, std::uint64_t tasks) const = 0;
    // The same for upper_product_halved.
    virtual std::uint64_t psize_halved(std::uint64_t n, std::uint64_t tasks) const { return psize(n, tasks); }

 protected:
    Algorithm(std::uint64_t bits, const char* k, const char* n, const char* v, const char* d)
        : max_bits(bits), key(k), name(n), version(v), description(d) {}
};

// The operations on words of type W (std::uint32_t or std::uint64_t). Destinations never overlap an
// operand or the scratch.
template <typename W>
class WordAlgorithm : public Algorithm {
 public:
    // destination[0 .. la + lb) = a * b. la, lb >= 1, in either order.
    virtual void multiply(const MultiplyContext& context, W* destination, const W* a, std::uint64_t la, const W* b,
                          std::uint64_t lb) const = 0;
    // destination[0 .. end - skip) = the product's words [skip, end). Words near `skip` may lack the
    // carries of the words below.
    virtual void upper_product(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                               const W* a, std::uint64_t la, const W* b, std::uint64_t lb) const = 0;
    virtual void upper_square(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                              const W* a, std::uint64_t la) const = 0;
    // As upper_product, by transforms of half the length where the algorithm has them.
    virtual void upper_product_halved(const MultiplyContext& context, W* destination, std::uint64_t skip,
                                      std::uint64_t end, const W* a, std::uint64_t la, const W* b,
                                      std::uint64_t lb) const {
        upper_product(context, destination, skip, end, a, la, b, lb);
    }
    // A parameter object for a convolution of n words (of 64 bits).
    virtual const TransformParameters& construct(TransformParametersBox& box, std::uint64_t n) const = 0;
    // The same for two operand lengths: a convolution that holds their product.
    virtual const TransformParameters& construct(TransformParametersBox& box, std::uint64_t la,
                                                 std::uint64_t lb) const {
        return construct(box, la + lb);
    }

 protected:
    using Algorithm::Algorithm;
};

using Algorithm64 = WordAlgorithm<std::uint64_t>;
using Algorithm32 = WordAlgorithm<std::uint32_t>;

}  // namespace qmp
