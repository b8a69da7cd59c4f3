// The leaf recursion of the P, Q, R series whose terms are computed one by one: halved down to single
// terms, and merged with schoolbook products.
//
// A Kernel type gives `words` (the capacity that its longest output asks for, per term),
// `longest_range` (terms of the longest leaf) and
//   void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const
// which computes the term of index k, or throws BufferTooSmallException in the kernel's name.
#pragma once

#include <cstdint>

#include "numbers/basic_int.h"
#include "numbers/exact_float.h"

namespace qmp {

struct LeafOutputs {
    BasicInt P;
    BasicInt Q;
    BasicInt R;
};

template <typename Kernel>
void leaf_bisect(const Kernel& kernel, bool alternating, LeafOutputs& out, std::uint64_t a, std::uint64_t b) {
    if (b - a == 1) {
        kernel.term(out.P, out.Q, out.R, b);
        return;
    }
    // A half's outputs, and a word for the sum's carry.
    constexpr std::uint64_t half = Kernel::words * ((Kernel::longest_range + 1) / 2) + 1;
    Word words[7 * half + half];
    LeafOutputs left = {{words, half}, {words + half, half}, {words + 2 * half, half}};
    LeafOutputs right = {{words + 3 * half, half}, {words + 4 * half, half}, {words + 5 * half, half}};
    BasicInt T(words + 6 * half, 2 * half);

    const std::uint64_t m = (a + b) >> 1;
    leaf_bisect(kernel, alternating, left, a, m);
    leaf_bisect(kernel, alternating, right, m, b);
    out.R.set_mulB(left.R, right.R);
    T.set_mulB(left.R, right.P);
    out.Q.set_mulB(left.Q, right.Q);
    out.P.set_mulB(left.P, right.Q);
    if (alternating && ((m ^ a) & 1)) {
        out.P -= T;
    } else {
        out.P += T;
    }
}

// A leaf's integer as the exact float whose buffer it was computed in.
inline void set_leaf(ExactFloat& x, const BasicInt& value) {
    x.T = x.base;
    x.L = value.L;
    x.exp = 0;
    x.hash = value.hash;
}

}  // namespace qmp
