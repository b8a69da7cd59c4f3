#include "series/fold_euler_gamma_bm_ab.h"

#include <algorithm>

#include "series/series_sizes.h"
#include "series/transform_pair.h"

namespace qmp {

namespace {

// One half of an exact buffer.
BigFloat half_of(const CheckedWords& buffer, unsigned index) {
    const std::uint64_t words = buffer.words() / 2 & ~std::uint64_t{7};
    return {buffer.data() + index * words, words};
}

}  // namespace

// T = Q1 (T0 Q1^2 + P0 R1) + Q0 T1 takes one product fewer than with Q1^3, and its sum is as short as all
// truncated numbers are.
void fold_euler_gamma_bm_ab(const MultiplyContext& context, std::uint64_t p,
                            const Series_EulerGamma_BM_AB::Buffers& block,
                            const std::array<CheckedWords, 3>& exact,
                            std::array<BigFloat, Series_EulerGamma_BM_AB::running_count>& running) {
    const auto cut = [p](const ExactFloat& x) {
        return BigFloatView{x.T, x.L, x.exp, 1}.cut(p + big_float_extra_precision);
    };
    const BigFloatView P0 = cut(block[0]);
    const BigFloatView Q0 = cut(block[1]);
    const BigFloatView R0 = cut(block[2]);
    const BigFloatView T0 = cut(block[3]);
    auto& [Q, R, T] = running;

    BigFloat product = half_of(exact[2], 0);
    BigFloat inner = half_of(exact[2], 1);
    {
        FloatTransformPair pair(context, Q0.L + std::max(T.L, Q.L) + fold_guard_words);
        pair.load(0, Q0);
        pair.load(1, T);
        pair.multiply(T, 1, p);  // Q0 T1
        pair.load(1, Q);
        pair.multiply(product, 1, p);  // Q0 Q1
    }
    {
        FloatTransformPair pair(context, P0.L + R.L + fold_guard_words);
        pair.load(0, P0);
        pair.load(1, R);
        pair.multiply(inner, 1, p);  // P0 R1
    }
    BigFloat square = half_of(exact[0], 0);
    BigFloat R_product = half_of(exact[0], 1);
    {
        FloatTransformPair pair(context, 2 * Q.L + fold_guard_words);
        pair.load(0, Q);
        pair.square(square, 0, p);  // Q1^2
    }
    BigFloat T_product = half_of(exact[1], 0);
    BigFloat sum = half_of(exact[1], 1);
    {
        FloatTransformPair pair(context, square.L + std::max(R0.L, T0.L) + fold_guard_words);
        pair.load(0, square);
        pair.load(1, R0);
        pair.multiply(R_product, 1, p);  // R0 Q1^2
        pair.load(1, T0);
        pair.multiply(T_product, 1, p);  // T0 Q1^2
    }
    const ParallelContext parallel = context.parallel();
    square.set_uadd(parallel, R_product, R, p);
    R.set_BigFloat(parallel, square, p);
    sum.set_uadd(parallel, T_product, inner, p);
    {
        FloatTransformPair pair(context, Q.L + sum.L + fold_guard_words);
        pair.load(0, Q);
        pair.load(1, sum);
        pair.multiply(T_product, 1, p);
    }
    sum.set_uadd(parallel, T_product, T, p);
    T.set_BigFloat(parallel, sum, p);
    Q.set_BigFloat(parallel, product, p);
}

}  // namespace qmp
