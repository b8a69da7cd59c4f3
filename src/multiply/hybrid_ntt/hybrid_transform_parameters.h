// One size of hybrid convolution.
//
// Products are modulo 2^convolution_bits - 1, and convolution_bits is the capacity of the listed size that
// the construction chose. Products of residues of more than 58 words are floating-point convolutions: the
// context's twiddle tables must cover them.
#pragma once

#include "multiply/hybrid_ntt/convolution.h"
#include "multiply/transform_parameters.h"

namespace qmp::hybrid_ntt {

class HybridTransformParameters final : public TransformParameters {
  public:
    // For a convolution of n 64-bit words. LimitExceededException when no size reaches that.
    explicit HybridTransformParameters(std::uint64_t n);
    // Of any size with n a multiple of 4, listed or not, for products of up to `product_words` words.
    HybridTransformParameters(const HybridParams& size, std::uint64_t product_words);

    const HybridParams& size() const { return plan_.params; }

    void forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                 std::uint64_t length) const override;
    void forward_for_square(const MultiplyContext& context, Word* transformed, const Word* operand,
                            std::uint64_t length) const override;
    // ConvolutionFailedException "Coefficient is too large." when a coefficient is not below 2^(32 n - 64 +
    // k): what only a fault of the machine explains.
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

}  // namespace qmp::hybrid_ntt
