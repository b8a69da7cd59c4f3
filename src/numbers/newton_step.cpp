#include "numbers/newton_step.h"

#include <charconv>
#include <string>

#include "console/console.h"
#include "console/format.h"
#include "errors/exception.h"

namespace qmp::newton {
namespace {

constexpr Word all_ones = ~Word{0};

[[noreturn]] void fail_at_word(const char* function, Word word) {
    console::print_warning("top: " + console::format_int(word));
    throw AlgorithmFailedException(function, "Convergence Failure");
}

void check_error_top(const char* function, const char* message, const BigFloat& e, std::uint64_t estimate_p) {
    const std::int64_t limit = largest_error_top(estimate_p);
    if (e.top() <= limit) return;
    console::print_warning("top: " + console::format_signed(e.top()) +
                           ", expected at most: " + console::format_signed(limit));
    throw AlgorithmFailedException(function, message);
}

// e = y - 1, the integer part being gone.
void check_over_estimate(const char* function, const BigFloat& e, std::uint64_t estimate_p) {
    if (!e.is_zero()) check_error_top(function, "Over-Estimate -> Convergence Failure", e, estimate_p);
}

// y = R^top(y) - y, y > 0.
void complement(BigFloat& y) {
    std::uint64_t rest = y.L;
    while (rest > 0 && y.T[rest - 1] == all_ones) --rest;
    if (rest > 0 && y.T[rest - 1] != 0) {
        y.negate_l1s();
        return;
    }
    // Zero words below the ones belong to the number: the difference is a power of the radix, or just
    // below one. (A y of ones only is one unit of its last word away, or closer.)
    y.L = rest;
    bool borrow = false;
    for (std::uint64_t i = 0; i < rest; ++i) {
        const Word w = y.T[i];
        y.T[i] = Word{0} - w - borrow;
        borrow = borrow || w != 0;
    }
    if (!borrow) {
        y.exp += static_cast<std::int64_t>(rest);
        y.T[0] = 1;
        y.L = 1;
    }
}

}  // namespace

void complement_under_estimate(const char* function, BigFloat& y, std::uint64_t estimate_p) {
    if (y.is_zero()) throw ArithmeticException(function, "strip_l1s() resulted in zero.");
    complement(y);
    check_error_top(function, "Under-Estimate -> Convergence Failure", y, estimate_p);
}

Estimate take_error(const char* function, BigFloat& y, std::uint64_t estimate_p) {
    const bool has_integer_part = y.exp < 1 && y.top() >= 1;
    const Word integer_part = has_integer_part ? y.T[-y.exp] : 0;
    if (integer_part > 1 || y.top() > 1) fail_at_word(function, integer_part);
    if (integer_part == 1) {
        y.truncate_above(0);
        check_over_estimate(function, y, estimate_p);
        return Estimate::over;
    }
    // y < 1 is 0.FFFF..., or its zero words below the point are an error of nearly 1.
    if (!y.is_zero() && y.top() < 0) fail_at_word(function, 0);
    complement_under_estimate(function, y, estimate_p);
    return Estimate::under;
}

Estimate take_error_below(const char* function, BigFloat& y, std::int64_t known_top,
                          std::uint64_t estimate_p) {
    const Word top = !y.is_zero() && y.top() == known_top ? y.T[y.L - 1] : 0;
    if (top == 0) {
        check_over_estimate(function, y, estimate_p);
        return Estimate::over;
    }
    if (top != all_ones) fail_at_word(function, top);
    complement_under_estimate(function, y, estimate_p);
    return Estimate::under;
}

void apply_correction(ParallelContext parallel, BigFloat& r, BigFloatView estimate, BigFloatView correction,
                      Estimate side, std::uint64_t p) {
    // The additions keep one word fewer than their precision says otherwise.
    const std::uint64_t precision = p + 1;
    if (side == Estimate::under) {
        r.set_uadd(parallel, estimate, correction, precision);
    } else if (ucmp(estimate, correction) >= 0) {
        r.set_usub(parallel, estimate, correction, precision);
    } else {
        r.set_usub(parallel, correction, estimate, precision);
    }
    if (!r.is_zero()) r.sign = estimate.sign;
}

void perturb(BigFloat& r, std::uint64_t p) {
    if (r.L > p) r.add_ulp();
}

void halve(ParallelContext parallel, BigFloat& e) {
    e.exp -= 1;
    e.mul_uW(parallel, Word{1} << 63);
}

void drop_empty_words(BigFloat& start) {
    while (start.L > 1 && start.T[0] == 0) start.truncate_to(start.L - 1);
}

StepTransforms::StepTransforms(const char* function, const MultiplyContext& context,
                               std::uint64_t convolution_words)
    : parameters_(construct_transform(box_, convolution_words)),
      kept_buffer_(context.scratch),
      after_kept_(context.after(parameters_.operand_words, function)),
      other_buffer_(after_kept_.scratch),
      rest_(after_kept_.after(parameters_.operand_words, function)) {}

StepLabel::StepLabel(Progress* progress, std::string_view text, std::uint64_t precision)
    : progress_(progress) {
    if (!progress_) return;
    char line[40];
    const std::size_t length = text.copy(line, sizeof(line) - 20);
    const auto end = std::to_chars(line + length, line + sizeof(line), precision).ptr;
    progress_->push_label({line, static_cast<std::size_t>(end - line)}, label_colour);
}

StepLabel::~StepLabel() {
    if (progress_) progress_->pop_label();
}

}  // namespace qmp::newton
