#include "multiply/fft/fft_algorithm.h"

#include "multiply/fft/fft_transform_parameters.h"
#include "multiply/transform_algorithm.h"

namespace qmp::fft {
namespace {

constexpr std::uint64_t largest_product_bits = 0x6000000;

// Two transformed operands and twice the scratch of one operation.
std::uint64_t scratch_bytes(std::uint64_t bits) {
    return 2 * (8 + 4) * fft_params(bits).points;
}

template <typename W>
class FftAlgorithm final : public TransformAlgorithm<W> {
  public:
    FftAlgorithm()
        : TransformAlgorithm<W>(
              {"FftAlgorithm::multiply()", "FftAlgorithm::upper_product()", "FftAlgorithm::upper_square()"},
              largest_product_bits, "FFT", "Floating-Point FFT", "FFTv3", "Short-Vector FMA") {}

    std::uint64_t psize(std::uint64_t n, std::uint64_t) const override {
        return scratch_bytes(8 * sizeof(W) * n);
    }

    const TransformParameters& construct(TransformParametersBox& box, std::uint64_t n) const override {
        return box.emplace<FftTransformParameters>(n);
    }

  protected:
    void product(const char* function, const MultiplyContext& context, void* destination, std::uint64_t first,
                 std::uint64_t end, const void* a, std::uint64_t bytes_a, const void* b,
                 std::uint64_t bytes_b) const override {
        const FftTransformParameters parameters(this->words_of_64_bits(bytes_a + bytes_b));
        product_by(parameters, 2 * parameters.scratch_words, function, context, destination, first, end, a,
                   bytes_a, b, bytes_b);
    }
};

}  // namespace

const Algorithm32& algorithm32() {
    static const FftAlgorithm<std::uint32_t> algorithm;
    return algorithm;
}

const Algorithm64& algorithm64() {
    static const FftAlgorithm<std::uint64_t> algorithm;
    return algorithm;
}

}  // namespace qmp::fft
