#include "multiply/ntt64/ntt64_algorithm.h"

#include <algorithm>

#include "multiply/crt_mulp.h"
#include "multiply/ntt64/ntt64_params.h"
#include "multiply/ntt64/ntt64_transform_parameters.h"
#include "multiply/transform_algorithm.h"

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
class Ntt64Algorithm final : public TransformAlgorithm<W> {
  public:
    Ntt64Algorithm()
        : TransformAlgorithm<W>({"Ntt64Algorithm::multiply()", "Ntt64Algorithm::upper_product()",
                                 "Ntt64Algorithm::upper_square()"},
                                largest_product_bits, "N64", "64-bit NTT", "NTT64", "64-bit NTT") {}

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

    void upper_product_halved(const MultiplyContext& context, W* destination, std::uint64_t skip,
                              std::uint64_t end, const W* a, std::uint64_t la, const W* b,
                              std::uint64_t lb) const override {
        CRT_mulp(context, half_length(product_words<W>(la + lb)), destination, skip, end, a, la, b, lb);
    }
    const TransformParameters& construct(TransformParametersBox& box, std::uint64_t n) const override {
        return box.emplace<Ntt64TransformParameters>(n);
    }

  protected:
    void product(const char* function, const MultiplyContext& context, void* destination, std::uint64_t first,
                 std::uint64_t end, const void* a, std::uint64_t bytes_a, const void* b,
                 std::uint64_t bytes_b) const override {
        const Ntt64TransformParameters parameters(this->words_of_64_bits(bytes_a + bytes_b));
        product_by(parameters, parameters.scratch_words, function, context, destination, first, end, a,
                   bytes_a, b, bytes_b);
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
