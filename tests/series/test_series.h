// Series whose sums are known in closed form, for the families that no constant of this build uses yet,
// and what the tests of a binary splitting share.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "errors/check.h"
#include "numbers/check_value.h"
#include "platform/memory/checked_array.h"
#include "platform/parallel/registry.h"
#include "radix/hash.h"
#include "series/bsr_engine.h"
#include "series/bsr_verify.h"
#include "series/bss_p2b2_bbp.h"
#include "series/bss_p2b3_type0.h"
#include "series/leaf_bisection.h"
#include "series/leaf_int.h"
#include "series/psr_plan.h"
#include "series/series_constants.h"
#include "series/series_sizes.h"
#include "support/random_words.h"
#include "support/twiddle_memory.h"

namespace kelvara_test {

using qmp::BasicInt;
using qmp::ExactFloat;
using qmp::Word;

// The sum over k >= 1 of s_k / (k 2^k): ln 2, or with alternating signs ln(3/2). The power of two is P's
// exponent.
class LogSeries final : public qmp::BSS_P2B2_BBP {
  public:
    explicit LogSeries(bool alternates, std::uint64_t margin = 10)
        : BSS_P2B2_BBP(alternates, margin, 2,
                       qmp::SeriesCost::of(qmp::series_constants().ln_2, qmp::series_constants().ln_2, 1)) {}

    void BSR_End(ExactFloat& P, ExactFloat& Q, const qmp::MultiplyContext&, std::uint64_t,
                 std::uint64_t b) const override {
        qmp::require_capacity("LogSeries::BSR_End()", P.AL, 2);
        qmp::require_capacity("LogSeries::BSR_End()", Q.AL, 1);
        P.set_uW(1);
        P.mp2(-static_cast<std::int64_t>(b));
        Q.set_uW(b);
    }
};

// ArcCoth(x): P(k) = 1, Q(k) = x^2 (2k + 1), R(k) = 2k + 1; ArcCoth(x) = (1 + P/Q) / x over all k >= 1.
class ArcCothSeries final : public qmp::BSS_P2B3_Type0 {
  public:
    explicit ArcCothSeries(Word x) : BSS_P2B3_Type0(false, 15, 16, cost_of(x)), square_(x * x) {}

    void BSR_End(ExactFloat& P, ExactFloat& Q, ExactFloat& R, const qmp::MultiplyContext&, std::uint64_t a,
                 std::uint64_t b) const override {
        qmp::LeafOutputs out = {{P.base, P.AL}, {Q.base, Q.AL}, {R.base, R.AL}};
        qmp::leaf_bisect(Kernel{square_}, alternating, out, a, b);
        set_leaf(P, out.P);
        set_leaf(Q, out.Q);
        set_leaf(R, out.R);
    }

  private:
    struct Kernel {
        static constexpr std::uint64_t words = 2;
        static constexpr std::uint64_t longest_range = 15;
        Word square;
        void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const {
            qmp::require_capacity("ArcCothSeries::term()", Q.AL, 2);
            qmp::leaf_set(P, 1);
            qmp::leaf_set(R, 2 * k + 1);
            qmp::leaf_set(Q, square);
            qmp::leaf_mul(Q, 2 * k + 1);
        }
    };
    static qmp::SeriesCost cost_of(Word x) {
        const double ratio = std::log(static_cast<double>(x) * static_cast<double>(x));
        return qmp::SeriesCost::of(ratio, ratio + qmp::series_constants().ln_2, 1);
    }
    Word square_;
};

// An exact number by value: its words from position 0 or its (negative) exponent upward.
struct ExactValue {
    std::vector<Word> words;
    std::int64_t exp = 0;

    static ExactValue of(const ExactFloat& x) {
        ExactValue value;
        if (x.exp > 0) value.words.resize(static_cast<std::size_t>(x.exp));
        value.words.insert(value.words.end(), x.T, x.T + x.L);
        value.exp = std::min<std::int64_t>(x.exp, 0);
        return value;
    }
    bool operator==(const ExactValue&) const = default;
};

// Garbage-filled buffers of exactly the planned sizes, each between sentinels.
template <typename Series>
class PlannedBuffers {
  public:
    explicit PlannedBuffers(qmp::BsrSizes sizes) : scratch(nullptr, (sizes.scratch_bytes + 7) / 8) {
        fill_garbage(scratch.data(), scratch.words());
        for (std::size_t i = 0; i < Series::buffer_count; i++) {
            memory.emplace_back(nullptr, sizes.words);
            fill_garbage(memory[i].data(), sizes.words);
            buffers[i] = ExactFloat(memory[i].data(), sizes.words);
        }
    }
    void check() const {
        scratch.check();
        for (const auto& buffer : memory) buffer.check();
    }
    std::vector<ExactValue> values() const {
        std::vector<ExactValue> result;
        for (std::size_t i = 0; i < Series::output_count; i++) result.push_back(ExactValue::of(buffers[i]));
        return result;
    }

    qmp::CheckedWords scratch;
    std::vector<qmp::CheckedWords> memory;
    typename Series::Buffers buffers;
};

// The exact sum over (a, b] in exactly the buffers that BSR_sizes asks for, checked.
template <typename Series>
std::vector<ExactValue> block_sum(const Series& series, qmp::ParallelContext parallel, std::uint64_t a,
                                  std::uint64_t b, std::uint64_t size, std::uint64_t depth) {
    PlannedBuffers<Series> planned(BSR_sizes(series, size, depth, parallel.tds));
    qmp::SilentProgress progress;
    const qmp::MultiplyContext context(parallel, &shared_twiddles(), planned.scratch.data(),
                                       planned.scratch.words());
    BSR_block(series, context, &progress, planned.buffers, a, b, depth);
    planned.check();
    qmp::qcb_Verify_BSR(&progress, a, b, {planned.buffers.data(), Series::output_count}, parallel);
    return planned.values();
}

inline std::vector<std::unique_ptr<qmp::BasicParallelizer>> frameworks() {
    std::vector<std::unique_ptr<qmp::BasicParallelizer>> all;
    for (const std::string& key : qmp::parallelizer_keys()) all.push_back(qmp::make_parallelizer(key));
    return all;
}

}  // namespace kelvara_test
