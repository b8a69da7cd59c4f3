#include "multiply/ntt32/ntt32_algorithm.h"

#include <algorithm>

#include "errors/check.h"
#include "multiply/ntt32/ntt32_params.h"
#include "multiply/ntt32/ntt32_transform_parameters.h"

namespace qmp::ntt32 {
namespace {

constexpr std::uint64_t largest_product_bits = 0x90000000;

// Two transformed operands and the scratch of one operation, of this or a smaller size: a row of more primes
// takes less memory for the same bits.
std::uint64_t words_needed(std::uint64_t bits) {
    std::uint64_t most = 0;
    limit_tables.visit_sizes_up_to(bits, [&](const SizeParams& size) {
        most = std::max(most, 2 * transformed_words(size) + scratch_words_of(size));
    });
    return most;
}

template <typename W>
class Ntt32Algorithm final : public WordAlgorithm<W> {
  public:
    Ntt32Algorithm() : WordAlgorithm<W>(largest_product_bits, "N32", "32-bit NTT", "NTT32", "32-bit NTT") {}

    std::uint64_t psize(std::uint64_t n, std::uint64_t) const override {
        return 8 * words_needed(8 * sizeof(W) * n);
    }

    void multiply(const MultiplyContext& context, W* destination, const W* a, std::uint64_t la, const W* b,
                  std::uint64_t lb) const override {
        product("Ntt32Algorithm::multiply()", context, destination, 0, la + lb, a, la, b, lb);
    }
    void upper_product(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                       const W* a, std::uint64_t la, const W* b, std::uint64_t lb) const override {
        product("Ntt32Algorithm::upper_product()", context, destination, skip, end, a, la, b, lb);
    }
    void upper_square(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                      const W* a, std::uint64_t la) const override {
        product("Ntt32Algorithm::upper_square()", context, destination, skip, end, a, la, a, la);
    }
    using WordAlgorithm<W>::construct;
    const TransformParameters& construct(TransformParametersBox& box, std::uint64_t n) const override {
        return box.emplace<Ntt32TransformParameters>(n);
    }

  private:
    // Words [first, end) of a * b; a square when the operands are the same words.
    static void product(const char* function, const MultiplyContext& context, W* destination,
                        std::uint64_t first, std::uint64_t end, const W* a, std::uint64_t la, const W* b,
                        std::uint64_t lb) {
        const std::uint64_t n = (sizeof(W) * (la + lb) + 7) / 8;
        const Ntt32TransformParameters parameters(n);
        parameters.require_twiddles(context);
        const std::uint64_t operand = parameters.operand_words;
        require_capacity(function, context.scratch_words, 2 * operand + parameters.scratch_words);
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
    static const Ntt32Algorithm<std::uint32_t> algorithm;
    return algorithm;
}

const Algorithm64& algorithm64() {
    static const Ntt32Algorithm<std::uint64_t> algorithm;
    return algorithm;
}

}  // namespace qmp::ntt32
