// One size of floating-point convolution.
//
// Transformed operands are 8 * points bytes, the scratch of an operation 4 * points bytes. Products are
// modulo 2^capacity_bits - 1 with capacity_bits >= convolution_bits.
#pragma once

#include "multiply/fft/fft_params.h"
#include "multiply/transform_parameters.h"

namespace qmp::fft {

class FftTransformParameters final : public TransformParameters {
  public:
    // For a convolution of n 64-bit words. LimitExceededException when no size reaches that.
    explicit FftTransformParameters(std::uint64_t n);

    const FftParams& fft_params() const { return params_; }

    void forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                 std::uint64_t length) const override;
    void forward_for_square(const MultiplyContext& context, Word* transformed, const Word* operand,
                            std::uint64_t length) const override;
    void inverse_multiply(const MultiplyContext& context, Word* a, const Word* b, Word* destination,
                          std::uint64_t first, std::uint64_t end) const override;
    void inverse_square(const MultiplyContext& context, Word* a, Word* destination, std::uint64_t first,
                        std::uint64_t end) const override;
    bool compatible_with(const TransformParameters& other) const override;

    // LimitExceededException unless the context's twiddle tables cover this size, as every operation on
    // points throws.
    void require_twiddles(const MultiplyContext& context) const;
    // The same on operands of little-endian bytes, for words of any size. `first` and `end` in bytes.
    void forward_bytes(const MultiplyContext& context, Word* transformed, const void* operand,
                       std::uint64_t bytes) const;
    void inverse_bytes(const MultiplyContext& context, Word* a, const Word* b, void* destination,
                       std::uint64_t first, std::uint64_t end) const;

  private:
    FftParams params_;
};

}  // namespace qmp::fft
