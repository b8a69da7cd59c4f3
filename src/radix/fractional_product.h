// The step that splits digits in two: the fractional part of a fraction times a power of the base.
#pragma once

#include <cstdint>

#include "multiply/multiply_context.h"
#include "radix/convert_plan.h"

namespace qmp {

// A fraction: the point is above words[length - 1].
struct FractionView {
    const Word* words;
    std::uint64_t length;

    // The top words only.
    FractionView cut(std::uint64_t most) const {
        return length <= most ? *this : FractionView{words + (length - most), most};
    }
};

// The fractional part of f P for the power P of level j, truncated to at most `wanted` words, in
// `low` (low_fraction_words() of the plan). f has at most the level's convolution words. Every word is
// exact: the product wraps around its convolution, and where the words next to the wrapped ones leave
// open whether a carry of theirs came through, the product is formed again without wrapping.
FractionView fractional_product(const ConvertPlanP& plan, int j, const MultiplyContext& context, Word* low,
                                std::uint64_t wanted, FractionView f);

// The same from parts of f that are short enough not to wrap: as if no carry could ever be read off. For
// the function above, and for tests to compare it with.
FractionView exact_fractional_product(const ConvertPlanP& plan, int j, const MultiplyContext& context,
                                      Word* low, std::uint64_t wanted, FractionView f);

}  // namespace qmp
