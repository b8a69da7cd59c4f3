#include "multiply/ntt64/ntt64_algorithm.h"

#include <algorithm>

#include "errors/check.h"
#include "multiply/crt_mulp.h"
#include "multiply/ntt64/ntt64_params.h"
#include "multiply/ntt64/ntt64_transform_parameters.h"

namespace qmp::ntt64 {
namespace {

constexpr std::uint64_t largest_product_bits = 0x3800000000000000;

template <typename W>
std::uint64_t product_words(std::uint64_t length) {
    return (sizeof(W) * length + 7) / 8;
}

// The object of half the length for products of this many 64-bit words.
Ntt64TransformParameters half_length(std::uint64_t words) {
    return {halved(ntt64_params(64 * words)), words};
}

template <typename W>
class Ntt64Algorithm final : public WordAlgorithm<W> {
  public:
    Ntt64Algorithm() : WordAlgorithm<W>(largest_product_bits, "N64", "64-bit NTT", "NTT64", "64-bit NTT") {}

    // Sizes with fewer primes may be the larger ones: the most that any product of up to n words needs.
    std::uint64_t psize(std::uint64_t n, std::uint64_t) const override {
        std::uint64_t words = 0;
        limit_tables.visit_sizes_up_to(64 * product_words<W>(n), [&](const SizeParams& size) {
            words = std::max(words, product_scratch_words(size));
        });
        return 8 * words;
    }
    // The larger of what the two lists need.
    std::uint64_t psize_halved(std::uint64_t n, std::uint64_t) const override {
        std::uint64_t words = 0;
        for (std::span<const LimitRow> rows : {limit_tables.specialised, limit_tables.standard}) {
            limit_tables.visit_rows_up_to(rows, 64 * product_words<W>(n), [&](const SizeParams& size) {
                words = std::max(words, crt_mulp_scratch_words(Ntt64TransformParameters(halved(size), 0)));
            });
        }
        return 8 * words;
    }

    void multiply(const MultiplyContext& context, W* destination, const W* a, std::uint64_t la, const W* b,
                  std::uint64_t lb) const override {
        product("Ntt64Algorithm::multiply()", context, destination, 0, la + lb, a, la, b, lb);
    }
    void upper_product(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                       const W* a, std::uint64_t la, const W* b, std::uint64_t lb) const override {
        product("Ntt64Algorithm::upper_product()", context, destination, skip, end, a, la, b, lb);
    }
    void upper_square(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                      const W* a, std::uint64_t la) const override {
        product("Ntt64Algorithm::upper_square()", context, destination, skip, end, a, la, a, la);
    }
    void upper_product_halved(const MultiplyContext& context, W* destination, std::uint64_t skip,
                              std::uint64_t end, const W* a, std::uint64_t la, const W* b,
                              std::uint64_t lb) const override {
        CRT_mulp(context, half_length(product_words<W>(la + lb)), destination, skip, end, a, la, b, lb);
    }
    const TransformParameters& construct(TransformParametersBox& box, std::uint64_t n) const override {
        return box.emplace<Ntt64TransformParameters>(n);
    }

  private:
    // Words [first, end) of a * b; a square when the operands are the same words.
    static void product(const char* function, const MultiplyContext& context, W* destination,
                        std::uint64_t first, std::uint64_t end, const W* a, std::uint64_t la, const W* b,
                        std::uint64_t lb) {
        const Ntt64TransformParameters parameters(product_words<W>(la + lb));
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
    static const Ntt64Algorithm<std::uint32_t> algorithm;
    return algorithm;
}

const Algorithm64& algorithm64() {
    static const Ntt64Algorithm<std::uint64_t> algorithm;
    return algorithm;
}

}  // namespace qmp::ntt64
