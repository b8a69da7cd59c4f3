#include "multiply/hybrid_ntt/hybrid_algorithm.h"

#include <algorithm>
#include <array>

#include "multiply/hybrid_ntt/hybrid_params.h"
#include "multiply/hybrid_ntt/hybrid_transform_parameters.h"
#include "multiply/hybrid_ntt/size_tables.h"
#include "multiply/transform_algorithm.h"

namespace qmp::hybrid_ntt {
namespace {

constexpr std::uint64_t largest_product_bits = 0x7FFF0000000;

// The memory of every size, both lists as one in the order of the search.
class MemoryTable {
  public:
    MemoryTable() {
        std::size_t i = 0;
        std::uint64_t most = 0;
        for (const auto& list : {specialised_list(), standard_list()}) {
            for (const HybridRow& row : list) {
                const HybridTransformParameters size(make_params(row.k, row.m), 0);
                // A row of smaller capacity may need more: fewer, longer points take less of them.
                if (i == 0 || size.convolution_bits > rows_[i - 1].capacity_bits) {
                    most = std::max(most, 2 * size.operand_words + size.scratch_words);
                    rows_[i++] = {size.convolution_bits, most};
                }
            }
        }
        count_ = i;
    }

    // Two transformed operands and the scratch of one operation, of this or a smaller size.
    std::uint64_t words(std::uint64_t bits) const {
        const std::uint64_t capacity = hybrid_params(bits).capacity_bits;
        return std::lower_bound(rows_.begin(), rows_.begin() + static_cast<std::ptrdiff_t>(count_), capacity,
                                [](const Row& row, std::uint64_t c) { return row.capacity_bits < c; })
            ->words;
    }

  private:
    struct Row {
        std::uint64_t capacity_bits;
        std::uint64_t words;
    };
    std::array<Row, specialised_row_count + standard_row_count> rows_{};
    std::size_t count_ = 0;
};

const MemoryTable& memory_table() {
    static const MemoryTable table;
    return table;
}

template <typename W>
class HybridAlgorithm final : public TransformAlgorithm<W> {
  public:
    HybridAlgorithm()
        : TransformAlgorithm<W>({"HybridAlgorithm::multiply()", "HybridAlgorithm::upper_product()",
                                 "HybridAlgorithm::upper_square()"},
                                largest_product_bits, "HNT", "Hybrid NTT", "HNTs", "original") {}

    std::uint64_t psize(std::uint64_t n, std::uint64_t) const override {
        return 8 * memory_table().words(8 * sizeof(W) * n);
    }

    const TransformParameters& construct(TransformParametersBox& box, std::uint64_t n) const override {
        return box.emplace<HybridTransformParameters>(n);
    }

  protected:
    void product(const char* function, const MultiplyContext& context, void* destination, std::uint64_t first,
                 std::uint64_t end, const void* a, std::uint64_t bytes_a, const void* b,
                 std::uint64_t bytes_b) const override {
        const HybridTransformParameters parameters(this->words_of_64_bits(bytes_a + bytes_b));
        product_by(parameters, parameters.scratch_words, function, context, destination, first, end, a,
                   bytes_a, b, bytes_b);
    }
};

}  // namespace

const Algorithm32& algorithm32() {
    static const HybridAlgorithm<std::uint32_t> algorithm;
    return algorithm;
}

const Algorithm64& algorithm64() {
    static const HybridAlgorithm<std::uint64_t> algorithm;
    return algorithm;
}

}  // namespace qmp::hybrid_ntt
