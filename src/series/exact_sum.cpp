#include "series/exact_sum.h"

#include <algorithm>
#include <cstring>

#include "errors/check.h"
#include "multiply/basecase/word_kernels.h"
#include "numbers/check_value.h"

namespace qmp {

namespace {

// Gives `a` words down to `bottom` and up to `top`, the new ones zero, with one to spare above.
void widen(ExactFloat& a, std::int64_t bottom, std::int64_t top, const char* function) {
    const std::uint64_t below = bottom < a.exp ? static_cast<std::uint64_t>(a.exp - bottom) : 0;
    const std::uint64_t above = top > a.top() ? static_cast<std::uint64_t>(top - a.top()) : 0;
    const auto start = static_cast<std::uint64_t>(a.T - a.base);
    require_capacity(function, a.AL, start + below + a.L + above + 1);
    if (below) {
        std::memmove(a.T + below, a.T, a.L * sizeof(Word));
        std::fill_n(a.T, below, Word{0});
        a.L += below;
        a.exp = bottom;
    }
    std::fill_n(a.T + a.L, above + 1, Word{0});
    a.L += above;
}

}  // namespace

void add_in_place(ExactFloat& a, ExactFloatView b) {
    widen(a, b.exp, b.top(), "add_in_place()");
    Word* overlap = a.T + (b.exp - a.exp);
    const bool carry = add_words(overlap, overlap, b.T, b.L);
    a.L++;
    add_carry(overlap + b.L, static_cast<std::uint64_t>(a.T + a.L - (overlap + b.L)), carry);
    while (a.T[a.L - 1] == 0) a.L--;
    a.hash = check_add(a.hash, b.hash);
}

void subtract_in_place(ExactFloat& a, ExactFloatView b) {
    widen(a, b.exp, b.top(), "subtract_in_place()");
    a -= b;
}

}  // namespace qmp
