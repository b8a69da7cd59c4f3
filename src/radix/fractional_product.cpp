#include "radix/fractional_product.h"

#include <algorithm>

#include "multiply/basecase/schoolbook.h"
#include "multiply/basecase/word_kernels.h"

namespace qmp {
namespace {

constexpr const char* function = "fractional_product()";
// Words below the wanted ones that tell whether a carry came through.
constexpr std::uint64_t most_check_words = 2;

FractionView without_low_zeros(FractionView f) {
    while (f.length > 0 && *f.words == 0) {
        ++f.words;
        --f.length;
    }
    return f;
}

// Where the product's words stand: word `end` is the first of the integer part.
struct Window {
    std::uint64_t first, end;

    Window(const ConvertPlanP::Level& level, FractionView f, std::uint64_t wanted)
        : end(f.length > level.power_zeros ? f.length - level.power_zeros : 0) {
        first = end > wanted ? end - wanted : 0;
    }
    std::uint64_t words() const { return end - first; }
};

// What wraps around can only add a carry to, or take a borrow from, the words above the wrapped ones; it
// passes through words that are all ones before, or all zeros, and leaves the opposite behind.
bool carry_may_have_passed(const Word* check_words, std::uint64_t n) {
    const auto all = [&](Word w) {
        return std::all_of(check_words, check_words + n, [w](Word x) { return x == w; });
    };
    return all(0) || all(~Word{0});
}

FractionView whole_product(const ConvertPlanP& plan, int j, const MultiplyContext& context, Word* low,
                           const Window& window, FractionView f) {
    const ConvertPlanP::Level& level = plan.level(j);
    context.after(plan.whole_product_words(j), function);
    mulB(context.scratch, f.words, window.end, level.table, level.power_length);
    std::copy(context.scratch + window.first, context.scratch + window.end, low);
    return {low, window.words()};
}

}  // namespace

FractionView exact_fractional_product(const ConvertPlanP& plan, int j, const MultiplyContext& context,
                                      Word* low, std::uint64_t wanted, FractionView f) {
    const ConvertPlanP::Level& level = plan.level(j);
    const TransformParameters& parameters = *level.parameters;
    f = without_low_zeros(f);
    const Window window(level, f, wanted);
    if (window.end == 0) return {low, 0};
    if (level.schoolbook) return whole_product(plan, j, context, low, window, f);
    Word* operand = context.scratch;
    const MultiplyContext behind_operand = context.after(parameters.operand_words, function);
    Word* sum = behind_operand.scratch;
    Word* part = sum + plan.exact_product_words(j) / 2;
    const MultiplyContext rest = behind_operand.after(plan.exact_product_words(j), function);

    const std::uint64_t step = level.convolution_words() - level.power_length;
    std::fill_n(sum, window.end, Word{0});
    for (std::uint64_t at = 0; at < window.end; at += step) {
        const std::uint64_t length = std::min(step, window.end - at);
        const std::uint64_t words = std::min(length + level.power_length, window.end - at);
        parameters.forward(rest, operand, f.words + at, length);
        parameters.inverse_multiply(rest, operand, level.table, part, 0, words);
        // What passes the end belongs to the integer part.
        add_carry(sum + at + words, window.end - at - words, add_words(sum + at, sum + at, part, words));
    }
    std::copy(sum + window.first, sum + window.end, low);
    return {low, window.words()};
}

FractionView fractional_product(const ConvertPlanP& plan, int j, const MultiplyContext& context, Word* low,
                                std::uint64_t wanted, FractionView f) {
    const ConvertPlanP::Level& level = plan.level(j);
    const TransformParameters& parameters = *level.parameters;
    f = without_low_zeros(f);
    const Window window(level, f, wanted);
    if (window.end == 0) return {low, 0};
    if (level.schoolbook) return whole_product(plan, j, context, low, window, f);
    // The words of f above the window's end meet no word of the power that brings them below the point.
    const std::uint64_t product_words = window.end + level.power_length;
    const std::uint64_t convolution = level.convolution_words();
    const std::uint64_t wrapped = product_words > convolution ? product_words - convolution : 0;
    const std::uint64_t checks = wrapped ? std::min(most_check_words, window.first - wrapped) : 0;

    Word* operand = context.scratch;
    const MultiplyContext rest = context.after(parameters.operand_words, function);
    parameters.forward(rest, operand, f.words, window.end);
    parameters.inverse_multiply(rest, operand, level.table, low, window.first - checks, window.end);
    if (wrapped && carry_may_have_passed(low, checks)) {
        return exact_fractional_product(plan, j, context, low, wanted, f);
    }
    return {low + checks, window.words()};
}

}  // namespace qmp
