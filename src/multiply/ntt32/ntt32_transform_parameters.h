// One size of 32-bit number-theoretic convolution.
//
// Products are modulo 2^convolution_bits - 1, and convolution_bits is the capacity of the listed size that
// the construction chose. A transformed operand is a residue of 32 bits for every point and prime.
#pragma once

#include "multiply/ntt32/convolution.h"
#include "multiply/transform_parameters.h"

namespace qmp::ntt32 {

class Ntt32TransformParameters final : public TransformParameters {
  public:
    // For a convolution of n 64-bit words. LimitExceededException when no size reaches that.
    explicit Ntt32TransformParameters(std::uint64_t n);
    // Of any size that the primes carry, listed or not, for products of up to `product_words` words.
    Ntt32TransformParameters(const SizeParams& size, std::uint64_t product_words);

    const SizeParams& size() const { return plan_.params; }

    void forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                 std::uint64_t length) const override;
    void forward_for_square(const MultiplyContext& context, Word* transformed, const Word* operand,
                            std::uint64_t length) const override;
    // ConvolutionFailedException "Coefficient is too large." when a coefficient is not below
    // 2^(g + s) * 2^(32 (primes - 1)), 2^g >= multiplier and s = exponent: what only a fault of the machine
    // explains.
    void inverse_multiply(const MultiplyContext& context, Word* a, const Word* b, Word* destination,
                          std::uint64_t first, std::uint64_t end) const override;
    void inverse_square(const MultiplyContext& context, Word* a, Word* destination, std::uint64_t first,
                        std::uint64_t end) const override;
    bool compatible_with(const TransformParameters& other) const override;

    // LimitExceededException unless the context's twiddle set was built for products of this length, as every
    // operation on points throws.
    void require_twiddles(const MultiplyContext& context) const;
    // The operations on operands of little-endian bytes, for words of any size. `first` and `end` in bytes.
    void forward_bytes(const MultiplyContext& context, Word* transformed, const void* operand,
                       std::uint64_t bytes) const;
    void inverse_bytes(const MultiplyContext& context, Word* a, const Word* b, void* destination,
                       std::uint64_t first, std::uint64_t end) const;

  private:
    Plan plan_;
    std::uint64_t product_words_;
};

}  // namespace qmp::ntt32
