// One size of 64-bit number-theoretic transform, cyclic and negacyclic.
//
// Products are exact modulo R^n - 1 (R^n + 1), R = 2^64, n = convolution_words(): the size's whole capacity,
// which may be more than the words asked for. A transformed operand is a word for each point and each prime.
#pragma once

#include "multiply/limit_tables.h"
#include "multiply/negacyclic_parameters.h"

namespace qmp::ntt64 {

class Ntt64TransformParameters final : public NegacyclicParameters {
  public:
    // For a convolution of n 64-bit words. LimitExceededException when no size reaches that.
    explicit Ntt64TransformParameters(std::uint64_t n);
    // Of this very size, for products of up to `product_words` 64-bit words. InvalidParametersException when
    // the transform has no such size.
    Ntt64TransformParameters(const SizeParams& size, std::uint64_t product_words);

    const SizeParams& size() const { return size_; }

    void forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                 std::uint64_t length) const override;
    void forward_for_square(const MultiplyContext& context, Word* transformed, const Word* operand,
                            std::uint64_t length) const override;
    void inverse_multiply(const MultiplyContext& context, Word* a, const Word* b, Word* destination,
                          std::uint64_t first, std::uint64_t end) const override;
    void inverse_square(const MultiplyContext& context, Word* a, Word* destination, std::uint64_t first,
                        std::uint64_t end) const override;
    bool compatible_with(const TransformParameters& other) const override;

    // LimitExceededException for the longest size of each number of primes, whose primes have no root of
    // unity of twice its order.
    void forward_negacyclic(const MultiplyContext& context, Word* transformed, const Word* operand,
                            std::uint64_t length) const override;
    bool inverse_multiply_negacyclic(const MultiplyContext& context, Word* a, const Word* b,
                                     Word* destination) const override;

    // LimitExceededException unless the context's twiddle tables are those of a computation with products
    // as long. The transform forms its own roots; the tables' extent is the computation's word for its
    // longest product.
    void require_twiddles(const MultiplyContext& context) const;
    // Cyclic operations on operands of little-endian bytes, for words of any size. `first` and `end` in
    // bytes.
    void forward_bytes(const MultiplyContext& context, Word* transformed, const void* operand,
                       std::uint64_t bytes) const;
    void inverse_bytes(const MultiplyContext& context, Word* a, const Word* b, void* destination,
                       std::uint64_t first, std::uint64_t end) const;

  private:
    void transform(const MultiplyContext& context, bool negacyclic, Word* transformed, const void* operand,
                   std::uint64_t bytes) const;
    // The whole product to `product`, capacity_bits long; true when it is R^n.
    bool inverse(const MultiplyContext& context, bool negacyclic, Word* a, const Word* b, Word* product,
                 Word* scratch) const;

    SizeParams size_;
    std::uint64_t product_words_;
};

// 2 * operand_words + scratch_words of a size, without building it.
std::uint64_t product_scratch_words(const SizeParams& size);

}  // namespace qmp::ntt64
