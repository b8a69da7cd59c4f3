#include "series/psr_evaluate.h"

#include <algorithm>
#include <optional>
#include <string>

#include "console/format.h"
#include "errors/check.h"
#include "radix/digit_counts.h"
#include "series/bsr_engine.h"
#include "series/bsr_verify.h"
#include "series/fold_euler_gamma_bm_ab.h"
#include "series/transform_pair.h"

namespace qmp {

namespace {

// The running values: P and Q, or Q^2, Q P, R and S.
template <typename Series>
using Running = std::array<BigFloat, Series::running_count>;

// Folds a block into running P and Q: its exact results, the running sums behind it, and the two exact
// buffers whole, which are free as soon as the block's results are held transformed.
struct Fold {
    const MultiplyContext& context;
    std::uint64_t p;  // precision at the block's start
    bool subtract;
    BigFloat& P;
    BigFloat& Q;
    BigFloat product;  // over the second exact buffer
    BigFloat sum;      // over the first one

    Fold(const MultiplyContext& multiplication, std::uint64_t precision, bool subtracts, BigFloat& running_P,
         BigFloat& running_Q, PsrMemory& memory)
        : context(multiplication),
          p(precision),
          subtract(subtracts),
          P(running_P),
          Q(running_Q),
          product(memory.exact[1].data(), memory.exact[1].words()),
          sum(memory.exact[0].data(), memory.exact[0].words()) {}

    std::uint64_t kept() const { return p + big_float_extra_precision; }
    BigFloatView cut(const ExactFloat& x) const { return BigFloatView{x.T, x.L, x.exp, 1}.cut(kept()); }
    // P = product +- P.
    void finish() {
        if (subtract) {
            sum.set_usub(context.parallel(), product, P, p);
        } else {
            sum.set_uadd(context.parallel(), product, P, p);
        }
        P.set_BigFloat(context.parallel(), sum, p);
    }
};

// P = P0 Q1 +- P1 Q0, Q = Q0 Q1.
void fold_block(const BSS_P2B2_BBP& series, const MultiplyContext& context, const PsrBlock& range,
                const BSS_P2B2_BBP::Buffers& block, PsrMemory& memory, Running<BSS_P2B2_BBP>& running) {
    Fold fold(context, range.precision_at_a, series.subtracts(range.a, range.b), running[0], running[1],
              memory);
    const BigFloatView P0 = fold.cut(block[0]);
    const BigFloatView Q0 = fold.cut(block[1]);
    const std::uint64_t longest = std::max({P0.L + fold.Q.L, Q0.L + fold.Q.L, Q0.L + fold.P.L});
    FloatTransformPair pair(fold.context, longest + fold_guard_words);
    pair.load(0, Q0);
    pair.load(1, fold.P);
    pair.multiply(fold.P, 1, fold.p);
    pair.load(1, fold.Q);
    pair.multiply(fold.Q, 0, fold.p);
    pair.load(0, P0);
    pair.multiply(fold.product, 0, fold.p);
    fold.finish();
}

// P = P0 Q1 +- R0 P1, Q = Q0 Q1.
void fold_block(const BSS_P2B3_Type0& series, const MultiplyContext& context, const PsrBlock& range,
                const BSS_P2B3_Type0::Buffers& block, PsrMemory& memory, Running<BSS_P2B3_Type0>& running) {
    Fold fold(context, range.precision_at_a, series.subtracts(range.a, range.b), running[0], running[1],
              memory);
    const BigFloatView P0 = fold.cut(block[0]);
    const BigFloatView Q0 = fold.cut(block[1]);
    const BigFloatView R0 = fold.cut(block[2]);
    {
        FloatTransformPair pair(fold.context, R0.L + fold.P.L + fold_guard_words);
        pair.load(0, R0);
        pair.load(1, fold.P);
        pair.multiply(fold.P, 1, fold.p);
    }
    {
        FloatTransformPair pair(fold.context, fold.Q.L + std::max(P0.L, Q0.L) + fold_guard_words);
        pair.load(0, fold.Q);
        pair.load(1, Q0);
        pair.multiply(fold.Q, 1, fold.p);
        pair.load(1, P0);
        pair.multiply(fold.product, 1, fold.p);
    }
    fold.finish();
}

void fold_block(const Series_EulerGamma_BM_AB&, const MultiplyContext& context, const PsrBlock& range,
                const Series_EulerGamma_BM_AB::Buffers& block, PsrMemory& memory,
                Running<Series_EulerGamma_BM_AB>& running) {
    fold_euler_gamma_bm_ab(context, range.precision_at_a, block, memory.exact, running);
}

// Two temporaries of `words` words at the start of each exact buffer.
template <typename Series>
typename Series::Buffers carve(const PsrMemory& memory, std::uint64_t words) {
    typename Series::Buffers out;
    for (std::size_t i = 0; i < Series::buffer_count; i++) {
        const CheckedWords& buffer = memory.exact[i / 2];
        require_capacity(Series::psr_function, buffer.words(), 2 * words);
        out[i] = ExactFloat(buffer.data() + i % 2 * words, words);
    }
    return out;
}

BigFloat whole_buffer(const CheckedWords& buffer) {
    return {buffer.data(), buffer.words()};
}

// The running values' places.
template <typename Series>
void place(const Series&, const PsrMemory& memory, Running<Series>& running) {
    for (std::size_t i = 0; i < running.size(); i++) running[i] = whole_buffer(memory.running[i]);
}

void place(const Series_EulerGamma_BM_AB&, const PsrMemory& memory,
           Series_EulerGamma_BM_AB::Running& running) {
    for (std::size_t i = 0; i < 3; i++) running[i] = whole_buffer(memory.running[i]);
    const std::uint64_t half = memory.exact[2].words() / 2;
    running[3] = BigFloat(memory.exact[2].data() + half, half);
}

// The running values after the last block.
template <typename Series>
void start(const Series&, const MultiplyContext& context, const PsrBlock&,
           const typename Series::Buffers& exact, Running<Series>& running) {
    for (std::size_t r = 0; r < running.size(); r++) {
        const ExactFloat& x = exact[r];
        running[r].set_BigFloat(context.parallel(), BigFloatView{x.T, x.L, x.exp, 1}, x.L);
    }
}

void start(const Series_EulerGamma_BM_AB&, const MultiplyContext& context, const PsrBlock& range,
           const Series_EulerGamma_BM_AB::Buffers& exact, Series_EulerGamma_BM_AB::Running& running) {
    const std::uint64_t p = range.precision_at_a;
    start_euler_gamma_bm_ab(context, p, exact, running[0], running[1]);
    for (std::size_t r : {2, 3}) {
        const ExactFloat& x = exact[r];
        running[r].set_BigFloat(context.parallel(), BigFloatView{x.T, x.L, x.exp, 1}, p);
    }
}

// Of the running values, the one whose length the label of a merge tells: Q, or Q^2.
template <typename Series>
constexpr std::size_t running_q = Series::running_count == 4 ? 0 : 1;

template <typename Series>
void evaluate(const Series& series, const MultiplyContext& context, Progress* progress, const PsrPlan& plan,
              std::uint64_t first, PsrMemory& memory, Running<Series>& running) {
    place(series, memory, running);
    std::optional<CommonFactors> factors = common_factors(series, plan.terms);
    const std::uint64_t total = plan.blocks.size() - first;
    for (std::uint64_t done = 0; done < total; done++) {
        const std::uint64_t i = plan.last() - done;
        const PsrBlock& block = plan.blocks[i];
        ScopedLabel label(progress,
                          "Series: " + std::to_string(i) + " ( " + std::to_string(done) + " / " +
                              std::to_string(total) + " )  ",
                          'P');

        const std::uint64_t depth = 2 * block.size >= plan.blocks[first].size ? 1 : 0;
        const BsrSizes sizes = BSR_sizes(series, block.size, depth, context.tds);
        auto exact = carve<Series>(memory, sizes.words & ~std::uint64_t{7});
        if (factors) factors->prepare(context, block.b - block.a);
        BSR_block(series, context, progress, exact, block.a, block.b, depth,
                  RangeFactors(factors ? &*factors : nullptr));
        qcb_Verify_BSR(progress, block.a, block.b, {exact.data(), Series::output_count}, context.parallel());

        if (done == 0) {
            start(series, context, block, exact, running);
            continue;
        }
        for (BigFloat& x : running) x.truncate_to(block.precision_at_a + big_float_extra_precision);
        ScopedLabel merge(progress, "-  ", label_colour);
        const std::uint64_t words = exact[1].L + running[running_q<Series>].L;
        ScopedLabel size(progress, console::format_separated(word_to_dec(words)), label_size_colour);
        fold_block(series, context, block, exact, memory, running);
    }
}

// Hands the running values to the caller.
template <typename Series>
void evaluate_pair(const Series& series, const MultiplyContext& context, Progress* progress,
                   const PsrPlan& plan, std::uint64_t first, PsrMemory& memory, BigFloat& P, BigFloat& Q) {
    Running<Series> running;
    evaluate(series, context, progress, plan, first, memory, running);
    P = running[0];
    Q = running[1];
}

}  // namespace

PsrMemory::PsrMemory(const ComputeContext& context, const PlanSizes& sizes, std::size_t buffers) {
    exact[0] = context.allocate(2 * sizes.exact_words);
    running[1] = context.allocate(sizes.running_words);
    running[0] = context.allocate(sizes.running_words);
    for (std::size_t i = 2; i < buffers; i++) running[i] = context.allocate(sizes.running_words);
    for (std::size_t i = 1; i < buffers; i++) exact[i] = context.allocate(2 * sizes.exact_words);
    scratch = context.allocate((sizes.scratch_bytes + sizeof(Word) - 1) / sizeof(Word));
}

void PsrMemory::release_temporaries() {
    scratch.reset();
    for (std::size_t i = exact.size(); i-- > 1;) exact[i].reset();
    running[2].reset();
    running[0].reset();
}

void B_PSR(const BSS_P2B2_BBP& series, const MultiplyContext& context, Progress* progress,
           const PsrPlan& plan, std::uint64_t first, PsrMemory& memory, BigFloat& P, BigFloat& Q) {
    evaluate_pair(series, context, progress, plan, first, memory, P, Q);
}

void B_PSR(const BSS_P2B3_Type0& series, const MultiplyContext& context, Progress* progress,
           const PsrPlan& plan, std::uint64_t first, PsrMemory& memory, BigFloat& P, BigFloat& Q) {
    evaluate_pair(series, context, progress, plan, first, memory, P, Q);
}

void B_PSR(const Series_EulerGamma_BM_AB& series, const MultiplyContext& context, Progress* progress,
           const PsrPlan& plan, std::uint64_t first, PsrMemory& memory,
           Series_EulerGamma_BM_AB::Running& running) {
    evaluate(series, context, progress, plan, first, memory, running);
}

}  // namespace qmp
