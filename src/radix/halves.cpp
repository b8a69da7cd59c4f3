#include "radix/halves.h"

namespace qmp {
namespace {

// Adds 1 to the s digit words below `top`; false when the carry leaves them.
bool add_carry_to_digits(Word base, Word* top, std::uint64_t s) {
    for (Word* digit = top - s; digit != top; ++digit) {
        if (*digit != base - 1) {
            ++*digit;
            return true;
        }
        *digit = 0;
    }
    return false;
}

}  // namespace

bool join_halves(Word base, Word* top, std::uint64_t s, std::uint64_t low_m, Word high_guard,
                 Word& low_guard) {
    Word* low_top = top - s;
    const Word t = low_top[-1];
    if (t == high_guard || t == high_guard + 1) return true;
    if (high_guard == base - 1 && t == 0) return add_carry_to_digits(base, top, s);
    if (high_guard == 0 && t == base - 1) {
        std::uint64_t rewritten = 0;
        while (rewritten < low_m && *--low_top == base - 1) {
            *low_top = 0;
            ++rewritten;
        }
        if (rewritten == low_m) low_guard = 0;
        return true;
    }
    return high_guard == t + 1;
}

}  // namespace qmp
