#include "multiply/vst/vst_algorithm.h"

#include <algorithm>

#include "multiply/crt_mulp.h"
#include "multiply/transform_algorithm.h"
#include "multiply/vst/vst_params.h"
#include "multiply/vst/vst_transform_parameters.h"

namespace qmp::vst {
namespace {

constexpr std::uint64_t largest_product_bits = 0x2400000000000;

// Two transformed operands and the scratch of one operation.
std::uint64_t row_words(const SizeParams& size, std::uint64_t tasks) {
    const Plan plan(size);
    return 2 * plan.operand_words() + plan.scratch_words(tasks);
}

// The same for products from two convolutions of half the length.
std::uint64_t halved_row_words(const SizeParams& size, std::uint64_t tasks) {
    const VstTransformParameters parameters(halved(size));
    const Plan& plan = parameters.plan();
    return crt_mulp_scratch_words(parameters) + plan.scratch_words(tasks) - plan.scratch_words(1);
}

template <typename W>
class VstAlgorithm final : public TransformAlgorithm<W> {
  public:
    VstAlgorithm()
        : TransformAlgorithm<W>(
              {"VstAlgorithm::multiply()", "VstAlgorithm::upper_product()", "VstAlgorithm::upper_square()"},
              largest_product_bits, "VST", "VST Algorithm", "VSTv2", "VST Algorithm") {}

    // A shorter size may need more than the next one: the most that any product of up to n words needs.
    std::uint64_t psize(std::uint64_t n, std::uint64_t tasks) const override {
        std::uint64_t words = 0;
        limit_tables.visit_sizes_up_to(8 * this->bytes(n), [&](const SizeParams& size) {
            words = std::max(words, row_words(size, tasks));
        });
        return words * sizeof(Word);
    }
    // The larger of what the two lists need.
    std::uint64_t psize_halved(std::uint64_t n, std::uint64_t tasks) const override {
        std::uint64_t words = 0;
        for (const auto& rows : {limit_tables.specialised, limit_tables.standard}) {
            limit_tables.visit_rows_up_to(rows, 8 * this->bytes(n), [&](const SizeParams& size) {
                words = std::max(words, halved_row_words(size, tasks));
            });
        }
        return words * sizeof(Word);
    }

    void upper_product_halved(const MultiplyContext& context, W* destination, std::uint64_t skip,
                              std::uint64_t end, const W* a, std::uint64_t la, const W* b,
                              std::uint64_t lb) const override {
        const VstTransformParameters parameters(halved(vst_params(8 * sizeof(W) * (la + lb))));
        CRT_mulp(context, parameters, destination, skip, end, a, la, b, lb);
    }
    const TransformParameters& construct(TransformParametersBox& box, std::uint64_t n) const override {
        return box.emplace<VstTransformParameters>(vst_params(64 * n));
    }

  protected:
    void product(const char* function, const MultiplyContext& context, void* destination, std::uint64_t first,
                 std::uint64_t end, const void* a, std::uint64_t bytes_a, const void* b,
                 std::uint64_t bytes_b) const override {
        const VstTransformParameters parameters(vst_params(8 * (bytes_a + bytes_b)));
        parameters.product(function, context, destination, first, end, a, bytes_a, b, bytes_b);
    }
};

}  // namespace

const Algorithm32& algorithm32() {
    static const VstAlgorithm<std::uint32_t> algorithm;
    return algorithm;
}

const Algorithm64& algorithm64() {
    static const VstAlgorithm<std::uint64_t> algorithm;
    return algorithm;
}

}  // namespace qmp::vst
