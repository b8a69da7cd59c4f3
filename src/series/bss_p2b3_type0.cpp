#include "series/bss_p2b3_type0.h"

#include <algorithm>
#include <utility>

#include "series/exact_sum.h"
#include "series/short_merge.h"
#include "series/transform_pair.h"

namespace qmp {

namespace {

bool is_short_merge(const BSS_P2B3_Type0::Buffers& left, const BSS_P2B3_Type0::Buffers& right) {
    return is_short_product(left[2].L, std::max(right[0].L, right[2].L)) &&
           is_short_product(right[1].L, std::max(left[0].L, left[1].L));
}

void merge_short(BSS_P2B3_Type0::Buffers& whole, const BSS_P2B3_Type0::Buffers& right, bool subtract) {
    auto& [P, Q, R, T] = whole;
    set_short_product(T, R, right[0]);
    multiply_short_in_place(R, right[2]);
    R.strip_low_zero_words();
    multiply_short_and_add(P, right[1], T, subtract);
    multiply_short_in_place(Q, right[1]);
    Q.strip_low_zero_words();
}

}  // namespace

void BSS_P2B3_Type0::merge(const MultiplyContext& context, Buffers& whole, const Buffers& right,
                           bool subtract) {
    if (is_short_merge(whole, right)) return merge_short(whole, right, subtract);
    auto& [P, Q, R, T] = whole;
    const ExactFloatView P1 = right[0];
    const ExactFloatView Q1 = right[1];
    const ExactFloatView R1 = right[2];

    // Once both operands of a product are held transformed it may take their place. P1 lies in P's buffer
    // and is needed until T = R0 P1 is formed, so the products with R0 come first.
    {
        ExactTransformPair pair(context, R.L + std::max(P1.L, R1.L));
        pair.load(0, R);
        pair.load(1, P1);
        pair.multiply(T, 1);
        pair.load(1, R1);
        pair.multiply(R, 1);
        R.strip_low_zero_words();
    }
    {
        ExactTransformPair pair(context, Q1.L + std::max(P.L, Q.L));
        pair.load(0, Q1);
        pair.load(1, Q);
        pair.multiply(Q, 1);
        Q.strip_low_zero_words();
        pair.load(1, P);
        pair.multiply(P, 1);
    }
    if (subtract) {
        subtract_in_place(P, T);
    } else {
        add_in_place(P, T);
    }
}

std::optional<CommonFactors> common_factors(const BSS_P2B3_Type0& series, std::uint64_t last) {
    const TermFactors factors = series.term_factors();
    if (factors.Q.empty() || factors.R.empty()) return std::nullopt;
    return std::optional<CommonFactors>(std::in_place, factors, last);
}

}  // namespace qmp
