// The integer part of a number, and its fraction as words below the point.
#pragma once

#include <cstdint>

#include "numbers/compute_context.h"
#include "radix/fractional_product.h"

namespace qmp {

struct SplitNumber {
    Word integer = 0;
    FractionView fraction{nullptr, 0};
    CheckedWords copy;  // of fractions that begin with zero words, which their number does not have

    // 0 <= x < 2^64, else the fatal error "Number is out of range.". At most `most_words` of the fraction.
    SplitNumber(const ComputeContext& context, BigFloatView x, std::uint64_t most_words);
};

// The integer part alone, with the same check.
Word integer_part(BigFloatView x);

}  // namespace qmp
