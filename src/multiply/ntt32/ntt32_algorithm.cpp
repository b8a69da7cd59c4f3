#include "multiply/ntt32/ntt32_algorithm.h"

#include <algorithm>

#include "multiply/ntt32/ntt32_params.h"
#include "multiply/ntt32/ntt32_transform_parameters.h"
#include "multiply/transform_algorithm.h"

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
class Ntt32Algorithm final : public TransformAlgorithm<W> {
  public:
    Ntt32Algorithm()
        : TransformAlgorithm<W>({"Ntt32Algorithm::multiply()", "Ntt32Algorithm::upper_product()",
                                 "Ntt32Algorithm::upper_square()"},
                                largest_product_bits, "N32", "32-bit NTT", "NTT32", "32-bit NTT") {}

    std::uint64_t psize(std::uint64_t n, std::uint64_t) const override {
        return 8 * words_needed(8 * sizeof(W) * n);
    }

    const TransformParameters& construct(TransformParametersBox& box, std::uint64_t n) const override {
        return box.emplace<Ntt32TransformParameters>(n);
    }

  protected:
    void product(const char* function, const MultiplyContext& context, void* destination, std::uint64_t first,
                 std::uint64_t end, const void* a, std::uint64_t bytes_a, const void* b,
                 std::uint64_t bytes_b) const override {
        const Ntt32TransformParameters parameters(this->words_of_64_bits(bytes_a + bytes_b));
        product_by(parameters, parameters.scratch_words, function, context, destination, first, end, a,
                   bytes_a, b, bytes_b);
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
