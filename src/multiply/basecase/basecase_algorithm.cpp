#include "multiply/basecase/basecase_algorithm.h"

#include <algorithm>

#include "errors/check.h"
#include "multiply/basecase/basecase_parameters.h"
#include "multiply/basecase/karatsuba.h"
#include "multiply/basecase/schoolbook.h"
#include "multiply/trim.h"

namespace qmp::basecase {
namespace {

constexpr std::uint64_t largest_product_bits = 65536;

template <typename W>
class BasecaseKaratsuba final : public WordAlgorithm<W> {
  public:
    BasecaseKaratsuba()
        : WordAlgorithm<W>(largest_product_bits, "BKT", "Basecase/Karatsuba", "MULB", "Basic Multiply") {}

    std::uint64_t psize(std::uint64_t n, std::uint64_t) const override {
        // Whole words of 64 bits: the 32-bit kind's scratch may end in the middle of one.
        return 8 * words_for_bytes(parameter_scratch_bytes<W>(n)) + 2 * align64(sizeof(W) * (n + 1));
    }

    void multiply(const MultiplyContext& context, W* destination, const W* a, std::uint64_t la, const W* b,
                  std::uint64_t lb) const override {
        const char* function = "BasecaseKaratsuba::multiply()";
        check_length(function, la + lb);
        // What mulK would find out itself, some calls further down.
        if (std::min(la, lb) < karatsuba_product_threshold<W>()) return mulB(destination, a, la, b, lb);
        W* scratch = take_scratch(context, function, mulK_scratch<W>(la, lb));
        mulK(destination, a, la, b, lb, scratch);
    }

    void upper_product(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                       const W* a, std::uint64_t la, const W* b, std::uint64_t lb) const override {
        const char* function = "BasecaseKaratsuba::upper_product()";
        const UpperProduct<W> p(skip, end, a, la, b, lb);
        const std::uint64_t n = p.la + p.lb;
        check_length(function, n);
        W* product = take_scratch(context, function, n + mulK_scratch<W>(p.la, p.lb));
        if (p.skip == 0 && p.end == n) return mulK(destination, p.a, p.la, p.b, p.lb, product);
        mulK(product, p.a, p.la, p.b, p.lb, product + n);
        std::copy(product + p.skip, product + p.end, destination);
    }

    void upper_square(const MultiplyContext& context, W* destination, std::uint64_t skip, std::uint64_t end,
                      const W* a, std::uint64_t la) const override {
        const char* function = "BasecaseKaratsuba::upper_square()";
        const UpperSquare<W> p(skip, end, a, la);
        check_length(function, 2 * p.la);
        W* square = take_scratch(context, function, 2 * p.la + sqrK_scratch<W>(p.la));
        if (p.skip == 0 && p.end == 2 * p.la) return sqrK(destination, p.a, p.la, square);
        sqrK(square, p.a, p.la, square + 2 * p.la);
        std::copy(square + p.skip, square + p.end, destination);
    }

    using WordAlgorithm<W>::construct;
    const TransformParameters& construct(TransformParametersBox& box, std::uint64_t n) const override {
        check_length("BasecaseKaratsuba::construct()", n * (64 / WordTraits<W>::bits));
        return box.emplace<BasecaseParameters<W>>(n);
    }

  private:
    static void check_length(const char* function, std::uint64_t n) {
        constexpr std::uint64_t limit = largest_product_bits / WordTraits<W>::bits;
        if (n > limit) throw LimitExceededException(function, limit, n);
    }

    static W* take_scratch(const MultiplyContext& context, const char* function, std::uint64_t words) {
        require_capacity(function, context.scratch_words, words_for_bytes(words * sizeof(W)));
        return reinterpret_cast<W*>(context.scratch);
    }
};

}  // namespace

const Algorithm64& algorithm64() {
    static const BasecaseKaratsuba<std::uint64_t> algorithm;
    return algorithm;
}

const Algorithm32& algorithm32() {
    static const BasecaseKaratsuba<std::uint32_t> algorithm;
    return algorithm;
}

}  // namespace qmp::basecase
