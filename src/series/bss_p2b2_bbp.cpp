#include "series/bss_p2b2_bbp.h"

#include <algorithm>

#include "series/exact_sum.h"
#include "series/short_merge.h"
#include "series/transform_pair.h"

namespace qmp {

namespace {

bool is_short_merge(const BSS_P2B2_BBP::Buffers& left, const BSS_P2B2_BBP::Buffers& right) {
    return is_short_product(std::max(left[0].L, left[1].L), std::max(right[0].L, right[1].L));
}

void merge_short(BSS_P2B2_BBP::Buffers& whole, const BSS_P2B2_BBP::Buffers& right, bool subtract) {
    auto& [P, Q, T] = whole;
    set_short_product(T, Q, right[0]);
    multiply_short_and_add(P, right[1], T, subtract);
    multiply_short_in_place(Q, right[1]);
    Q.strip_low_zero_words();
}

}  // namespace

void BSS_P2B2_BBP::merge(const MultiplyContext& context, Buffers& whole, const Buffers& right,
                         bool subtract) {
    if (is_short_merge(whole, right)) return merge_short(whole, right, subtract);
    auto& [P, Q, T] = whole;
    const ExactFloatView P1 = right[0];
    const ExactFloatView Q1 = right[1];
    {
        ExactTransformPair pair(context, std::max({P1.L + Q.L, Q.L + Q1.L, P.L + Q1.L}));
        pair.load(0, Q);
        pair.load(1, P1);
        pair.multiply(T, 1);
        pair.load(1, Q1);
        pair.multiply(Q, 0);
        Q.strip_low_zero_words();
        pair.load(0, P);
        pair.multiply(P, 0);
    }
    if (subtract) {
        subtract_in_place(P, T);
    } else {
        add_in_place(P, T);
    }
}

}  // namespace qmp
