#include "series/fold_euler_gamma_bm_ab.h"

#include <algorithm>

#include "series/run_both.h"
#include "series/series_sizes.h"
#include "series/transform_pair.h"

namespace qmp {

namespace {

BigFloatView cut(const ExactFloat& x, std::uint64_t p) {
    return BigFloatView{x.T, x.L, x.exp, 1}.cut(p + big_float_extra_precision);
}

// One half of an exact buffer.
BigFloat half_of(const CheckedWords& buffer, unsigned index) {
    const std::uint64_t words = buffer.words() / 2 & ~std::uint64_t{7};
    return {buffer.data() + index * words, words};
}

}  // namespace

void start_euler_gamma_bm_ab(const MultiplyContext& context, std::uint64_t p,
                             const Series_EulerGamma_BM_AB::Buffers& block, BigFloat& square,
                             BigFloat& mixed) {
    const BigFloatView P = cut(block[0], p);
    const BigFloatView Q = cut(block[1], p);
    FloatTransformPair pair(context, Q.L + std::max(P.L, Q.L) + fold_guard_words);
    pair.load(0, Q);
    pair.square(square, 0, p);
    pair.load(1, P);
    pair.multiply(mixed, 1, p);
}

// With D = Q^2 and M = Q P, a block makes of the numbers behind it
//   D = D0 D1, M = M0 D1 + D0 M1, R = R0 D1 + R1, S = S0 D1 + R0 M1 + S1.
// D and M are twice as long as Q and P only in the block: what is kept of the others is as long as all
// truncated numbers are, and needs no squaring.
void fold_euler_gamma_bm_ab(const MultiplyContext& context, std::uint64_t p,
                            const Series_EulerGamma_BM_AB::Buffers& block,
                            const std::array<CheckedWords, 3>& exact,
                            Series_EulerGamma_BM_AB::Running& running) {
    auto& [D, M, R, S] = running;
    BigFloat D0 = half_of(exact[2], 0);
    BigFloat M0 = half_of(exact[0], 1);
    start_euler_gamma_bm_ab(context, p, block, D0, M0);
    const BigFloatView R0 = cut(block[2], p);
    const BigFloatView S0 = cut(block[3], p);

    BigFloat M_product = half_of(exact[0], 0);
    BigFloat S_product = half_of(exact[0], 1);
    BigFloat R_product = half_of(exact[1], 0);
    BigFloat mixed_product = half_of(exact[1], 1);
    {
        FloatTransformPair pair(context,
                                std::max({D0.L, M0.L, R0.L, S0.L}) + std::max(D.L, M.L) + fold_guard_words);
        pair.load(0, D);
        pair.load(1, M0);
        pair.multiply(M_product, 1, p);  // M0 D1
        pair.load(1, S0);
        pair.multiply(S_product, 1, p);  // S0 D1
        pair.load(1, R0);
        pair.multiply(R_product, 0, p);  // R0 D1
        pair.load(0, M);
        pair.multiply(mixed_product, 1, p);  // R0 M1
        pair.load(1, D0);
        pair.multiply(M, 0, p);  // D0 M1
        pair.load(0, D);
        pair.multiply(D, 0, p);  // D0 D1
    }
    // Additions run on one thread: those of S beside those of R and M.
    const ParallelContext one = ParallelContext::sequential();
    const auto add_to_S = [&] {
        BigFloat sum = half_of(exact[2], 0);
        sum.set_uadd(one, S_product, mixed_product, p);
        S_product.set_uadd(one, sum, S, p);
        S.set_BigFloat(one, S_product, p);
    };
    const auto add_to_R_and_M = [&] {
        BigFloat sum(context.scratch, context.scratch_words);
        sum.set_uadd(one, R_product, R, p);
        R.set_BigFloat(one, sum, p);
        sum.set_uadd(one, M_product, M, p);
        M.set_BigFloat(one, sum, p);
    };
    run_both(context, add_to_S, add_to_R_and_M);
}

}  // namespace qmp
