// One-word arithmetic on small integers, for the kernels that compute single terms.
//
// The check values follow the operations, not the words. Capacities are the kernels' business: they check
// them once, before they write.
#pragma once

#include "multiply/basecase/word_kernels.h"
#include "numbers/basic_int.h"
#include "numbers/check_value.h"

namespace qmp {

inline void leaf_set(BasicInt& x, Word w) {
    x.T[0] = w;
    x.L = w != 0;
    x.hash = check_reduce(w);
}

inline void leaf_mul(BasicInt& x, Word w) {
    const Word carry = mul_word(x.T, x.T, x.L, w);
    if (carry) x.T[x.L++] = carry;
    x.hash = check_mul(x.hash, check_reduce(w));
}

// x > 0.
inline void leaf_add(BasicInt& x, Word w) {
    const Word before = x.T[0];
    x.T[0] = before + w;
    if (add_carry(x.T + 1, x.L - 1, x.T[0] < before)) x.T[x.L++] = 1;
    x.hash = check_add(x.hash, check_reduce(w));
}

// x > w, of the same length afterwards or shorter.
inline void leaf_sub(BasicInt& x, Word w) {
    const Word before = x.T[0];
    x.T[0] = before - w;
    sub_borrow(x.T + 1, x.L - 1, before < w);
    while (x.T[x.L - 1] == 0) x.L--;
    x.hash = check_sub(x.hash, check_reduce(w));
}

}  // namespace qmp
