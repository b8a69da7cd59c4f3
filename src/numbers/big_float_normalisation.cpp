// Top words, low words and the last unit of a BigFloat.
#include "console/console.h"
#include "errors/check.h"
#include "multiply/basecase/word_kernels.h"
#include "numbers/big_float.h"
#include "numbers/big_float_window.h"

namespace qmp {

void BigFloat::check_normalization() const {
    if (L != 0 && T[L - 1] == 0) console::fatal_error("BigFloat::check_normalization(): Top word is zero.");
}

void BigFloat::strip_l1s() {
    while (L > 0 && T[L - 1] == ~Word{0}) --L;
    strip_top_zeros(*this);
}

void BigFloat::negate_l1s() {
    strip_l1s();
    if (L == 0) return;
    for (std::uint64_t i = 0; i < L; ++i) T[i] = ~T[i];
    add_carry(T, L, true);
    // Words of all ones below stripped zero words complement to zero.
    strip_top_zeros(*this);
}

void BigFloat::truncate_above(std::int64_t k) {
    if (top() <= k) return;
    L = k <= exp ? 0 : static_cast<std::uint64_t>(k - exp);
    strip_top_zeros(*this);
}

void BigFloat::add_ulp() {
    if (!add_carry(T, L, true)) return;
    // The label is the one that reports of this failure have always carried.
    require_capacity("BigFloat::set_double()", AL, static_cast<std::uint64_t>(T - base) + L + 1);
    T[L++] = 1;
}

void BigFloat::truncate_to(std::uint64_t words) {
    if (L <= words) return;
    if (words == 0) {
        set_zero();
        return;
    }
    const std::uint64_t drop = L - words;
    T += drop;
    L = words;
    exp += static_cast<std::int64_t>(drop);
}

}  // namespace qmp
