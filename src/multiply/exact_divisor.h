// Exact division of several numbers by one divisor that is long enough for transforms: its inverse modulo a
// power of two by Newton's iteration from the lowest words up, then one product for each quotient.
#pragma once

#include <cstdint>

#include "multiply/multiply_context.h"
#include "multiply/word.h"

namespace qmp {

class ExactDivisor {
  public:
    // The longest quotients, in words.
    static constexpr std::uint64_t longest_quotient = 6144;
    // From this many words of the divisor on, this is faster than divide_exact() twice.
    static constexpr std::uint64_t shortest_divisor = 32;

    // For quotients of up to `words` words by the odd d[0 .. m). `temporary` has 2 words words and is used
    // again by divide(); the context's scratch serves products of so many words.
    ExactDivisor(const MultiplyContext& context, const Word* d, std::uint64_t m, std::uint64_t words,
                 Word* temporary);

    // x = x / d in place, where x has n words and d divides it: as divide_exact().
    std::uint64_t divide(Word* x, std::uint64_t n) const;

  private:
    void extend(std::uint64_t from, std::uint64_t to, const Word* d);

    MultiplyContext context_;
    std::uint64_t divisor_words_;
    Word* temporary_;
    Word inverse_[longest_quotient];
};

}  // namespace qmp
