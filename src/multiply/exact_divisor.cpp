#include "multiply/exact_divisor.h"

#include <algorithm>

#include "multiply/basecase/exact_division.h"
#include "multiply/basecase/word_kernels.h"
#include "multiply/multiply.h"

namespace qmp {

namespace {

// The inverse's first words come from the schoolbook.
constexpr std::uint64_t first_words = 28;

}  // namespace

ExactDivisor::ExactDivisor(const MultiplyContext& context, const Word* d, std::uint64_t m,
                           std::uint64_t words, Word* temporary)
    : context_(context), divisor_words_(m), temporary_(temporary) {
    std::uint64_t lengths[64];
    int steps = 0;
    lengths[0] = words;
    while (lengths[steps] > first_words) {
        lengths[steps + 1] = (lengths[steps] + 1) / 2;
        steps++;
    }
    invert_low_words(inverse_, lengths[steps], d, m);
    for (; steps > 0; steps--) extend(lengths[steps], lengths[steps - 1], d);
}

// x = x + x (1 - d x) modulo 2^(64 to), where 1 - d x is 0 below word `from`: only the words above it are
// new.
void ExactDivisor::extend(std::uint64_t from, std::uint64_t to, const Word* d) {
    const std::uint64_t m = std::min(divisor_words_, to);
    const std::uint64_t added = to - from;
    multiply(context_, temporary_, d, m, inverse_, from);
    if (m + from < to) std::fill(temporary_ + m + from, temporary_ + to, Word{0});
    // The product's words above `to` are not needed: the next one takes their place.
    Word* const correction = temporary_ + to;
    multiply(context_, correction, temporary_ + from, added, inverse_, added);
    negate_words(correction, added);
    std::copy_n(correction, added, inverse_ + from);
}

std::uint64_t ExactDivisor::divide(Word* x, std::uint64_t n) const {
    const std::uint64_t quotient = n - divisor_words_ + 1;
    multiply(context_, temporary_, x, quotient, inverse_, quotient);
    std::copy_n(temporary_, quotient, x);
    return quotient - (x[quotient - 1] == 0);
}

}  // namespace qmp
