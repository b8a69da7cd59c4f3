#include "multiply/fft/fft_algorithm.h"

#include "errors/check.h"
#include "multiply/fft/fft_transform_parameters.h"

namespace qmp::fft {
namespace {

constexpr std::uint64_t largest_product_bits = 0x6000000;

// Two transformed operands and twice the scratch of one operation.
std::uint64_t scratch_bytes(std::uint64_t bits) {
    return 2 * (8 + 4) * fft_params(bits).points;
}

template <typename W>
class FftAlgorithm final : public WordAlgorithm<W> {
  public:
    FftAlgorithm()
        : WordAlgorithm<W>(largest_product_bits, "FFT", "Floating-Point FFT", "FFTv3", "Short-Vector FMA") {}

    std::uint64_t psize(std::uint64_t n, std::uint64_t) const override {
        return scratch_bytes(8 * sizeof(W) * n);
    }

    void multiply(const MultiplyContext& context, W* destination, const W* a, std::uint64_t la, const W* b,
                  std::uint64_t lb) const override {
        product("FftAlgorithm::multiply()", context, destination, 0, la + lb, a, la, b, lb);
    }
    void upper_product(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                       const W* a, std::uint64_t la, const W* b, std::uint64_t lb) const override {
        product("FftAlgorithm::upper_product()", context, destination, skip, end, a, la, b, lb);
    }
    void upper_square(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                      const W* a, std::uint64_t la) const override {
        product("FftAlgorithm::upper_square()", context, destination, skip, end, a, la, a, la);
    }
    const TransformParameters& construct(TransformParametersBox& box, std::uint64_t n) const override {
        return box.emplace<FftTransformParameters>(n);
    }

  private:
    // Words [first, end) of a * b; a square when the operands are the same words.
    static void product(const char* function, const MultiplyContext& context, W* destination,
                        std::uint64_t first, std::uint64_t end, const W* a, std::uint64_t la, const W* b,
                        std::uint64_t lb) {
        const FftTransformParameters parameters((sizeof(W) * (la + lb) + 7) / 8);
        parameters.require_twiddles(context);
        const std::uint64_t operand = parameters.operand_words;
        require_capacity(function, context.scratch_words, 2 * operand + 2 * parameters.scratch_words);
        Word* transformed_a = context.scratch;
        Word* transformed_b = a == b && la == lb ? transformed_a : transformed_a + operand;
        const MultiplyContext inner = context.after(2 * operand, function);

        parameters.forward_bytes(inner, transformed_a, a, sizeof(W) * la);
        if (transformed_b != transformed_a) parameters.forward_bytes(inner, transformed_b, b, sizeof(W) * lb);
        parameters.inverse_bytes(inner, transformed_a, transformed_b, destination, sizeof(W) * first,
                                 sizeof(W) * end);
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
