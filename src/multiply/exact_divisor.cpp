#include "multiply/exact_divisor.h"

#include <algorithm>

#include "errors/check.h"
#include "multiply/basecase/exact_division.h"
#include "multiply/multiply.h"

namespace qmp {

namespace {

// The inverse's first words come from the schoolbook.
constexpr std::uint64_t first_words = 28;

// x = x + x (1 - d x) modulo 2^(64 to), where 1 - d x is 0 below word `from`: only the words above it are
// new. `temporary` has 2 to words.
void extend(const MultiplyContext& context, Word* x, std::uint64_t from, std::uint64_t to,
            const std::vector<Word>& d, Word* temporary) {
    const std::uint64_t m = std::min<std::uint64_t>(d.size(), to);
    const std::uint64_t added = to - from;
    multiply(context, temporary, d.data(), m, x, from);
    if (m + from < to) std::fill(temporary + m + from, temporary + to, Word{0});
    // The product's words above `to` are not needed: the next one takes their place.
    Word* const correction = temporary + to;
    multiply(context, correction, temporary + from, added, x, added);
    negate_words(correction, added);
    std::copy_n(correction, added, x + from);
}

}  // namespace

ExactDivisor::ExactDivisor(const MultiplyContext& context, const Word* d, std::uint64_t m,
                           std::uint64_t words)
    : divisor_(d, d + m), words_(words), parameters_(&construct_transform(box_, 2 * words)) {
    std::vector<Word> inverse(words);
    set_inverse(context, inverse.data());
    inverse_.reset(static_cast<Word*>(
        ::operator new[](parameters_->operand_words * sizeof(Word), std::align_val_t{64})));
    parameters_->forward(context, inverse_.get(), inverse.data(), words);
}

void ExactDivisor::set_inverse(const MultiplyContext& context, Word* inverse) const {
    std::uint64_t lengths[64];
    int steps = 0;
    lengths[0] = words_;
    while (lengths[steps] > first_words) {
        lengths[steps + 1] = (lengths[steps] + 1) / 2;
        steps++;
    }
    std::vector<Word> temporary(2 * words_);
    invert_low_words(inverse, lengths[steps], divisor_.data(), divisor_.size());
    for (; steps > 0; steps--) {
        extend(context, inverse, lengths[steps], lengths[steps - 1], divisor_, temporary.data());
    }
}

std::uint64_t ExactDivisor::divide(const MultiplyContext& context, Word* x, std::uint64_t n) const {
    constexpr const char* function = "ExactDivisor::divide()";
    const std::uint64_t quotient = n - divisor_.size() + 1;
    require_capacity(function, words_, quotient);
    Word* const slot = context.scratch;
    const MultiplyContext rest = context.after(parameters_->operand_words, function);
    const OperandState state = parameters_->begin_forward(rest, slot, x, quotient);
    // A whole operand is only read.
    parameters_->finish_multiply(rest, slot, state, inverse_.get(), OperandState::whole, x, 0, quotient);
    return quotient - (x[quotient - 1] == 0);
}

}  // namespace qmp
