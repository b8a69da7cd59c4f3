#include "series_profile.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "constant_name.h"
#include "constants/arccoth_series.h"
#include "constants/catalan_huvent.h"
#include "constants/catalan_lupas.h"
#include "constants/catalogue.h"
#include "constants/euler_gamma.h"
#include "constants/lemniscate_series.h"
#include "constants/pi_formulas.h"
#include "constants/zeta3_series.h"
#include "platform/timers.h"
#include "series/bsr_engine.h"
#include "series/bsr_verify.h"
#include "series/psr_evaluate.h"
#include "series/series_e_taylor.h"
#include "support/workspace.h"
#include "timed_series.h"

namespace bench {
namespace {

using qmp::PsrBlock;

// Buffers for the blocks of a series, and the times of what is done in them.
template <typename Series>
class Profile {
  public:
    Profile(const Series& series, std::uint64_t last, std::uint64_t longest_product,
            std::uint64_t buffer_words)
        : series_(series),
          factors_(qmp::common_factors(series, last)),
          workspace_(longest_product, 1),
          buffer_words_(buffer_words),
          memory_(Series::buffer_count * buffer_words) {
        // As a session fills its memory before it begins to compute.
        std::fill_n(memory_.data(), Series::buffer_count * buffer_words, qmp::Word{0});
        std::fill_n(workspace_.context().scratch, workspace_.scratch_words(), qmp::Word{0});
    }

    void sum(std::uint64_t a, std::uint64_t b, std::uint64_t depth) {
        typename Series::Buffers out;
        for (std::size_t i = 0; i < Series::buffer_count; ++i) {
            out[i] = qmp::ExactFloat(memory_.data() + i * buffer_words_, buffer_words_);
        }
        const TimedSeries<Series> timed(series_, times_);
        const qmp::MultiplyContext& context = workspace_.context();
        const qmp::CounterTimePoint start = qmp::now();
        const std::uint64_t first_tick = __rdtsc();
        if (factors_) {
            factors_->prepare(context, b - a);
            times_.divisors.add(first_tick);
        }
        qmp::BSR_block(timed, context, nullptr, out, a, b, depth,
                       qmp::RangeFactors(factors_ ? &*factors_ : nullptr));
        ticks_ += __rdtsc() - first_tick;
        const qmp::CounterTimePoint summed = qmp::now();
        qmp::qcb_Verify_BSR(nullptr, a, b, {out.data(), Series::output_count}, context.parallel());
        checked_ += qmp::seconds_between(qmp::now(), summed);
        summed_ += qmp::seconds_between(summed, start);
        ++blocks_;
    }

    std::vector<WorkKind> kinds() const {
        const double tick = summed_ / static_cast<double>(ticks_);
        std::vector<WorkKind> list;
        double rest = summed_;
        const auto add = [&](const std::string& name, const WorkTimes::Kind& kind) {
            if (kind.count == 0) return;
            list.push_back({name, kind.count, static_cast<double>(kind.ticks) * tick});
            rest -= list.back().seconds;
        };
        add("leaves", times_.leaves);
        add("common factors, prepared", times_.divisors);
        add("common factors, taken out", times_.factors);
        for (std::size_t k = 0; k < times_.merges.size(); ++k) {
            add("merges, Q 2^" + std::to_string(k) + " words", times_.merges[k]);
        }
        list.push_back({"recursion around them", times_.leaves.count, rest});
        list.push_back({"modular check of the blocks", blocks_, checked_});
        return list;
    }

  private:
    const Series& series_;
    std::optional<qmp::CommonFactors> factors_;
    Workspace workspace_;
    std::uint64_t buffer_words_;
    AlignedWords memory_;
    WorkTimes times_;
    std::uint64_t blocks_ = 0;
    std::uint64_t ticks_ = 0;
    double summed_ = 0;
    double checked_ = 0;
};

template <typename Series>
void sum_blocks(Profile<Series>& profile, const qmp::PsrPlan& plan) {
    for (auto block = plan.blocks.rbegin(); block != plan.blocks.rend(); ++block) {
        profile.sum(block->a, block->b, 2 * block->size >= plan.blocks.front().size ? 1 : 0);
    }
}

template <typename Series>
std::vector<WorkKind> profile_plan(const Series& series, std::uint64_t p, double factor = 1.0) {
    const qmp::PsrPlan plan = qmp::build_psr_plan(series, p, factor);
    const qmp::PlanSizes sizes = series.SizesForPlan(plan, 0, 1);
    Profile<Series> profile(series, plan.terms, qmp::psr_largest_product(series, plan), sizes.exact_words);
    sum_blocks(profile, plan);
    return profile.kinds();
}

// The first of the two series of a lemniscate formula, or the second.
std::vector<WorkKind> profile_lemniscate(const kelvara::LemniscateFormula& formula, std::uint64_t p) {
    std::vector<WorkKind> kinds;
    for (const auto& term : {formula.first, formula.second}) {
        const std::string name = std::to_string(term.x.p) + "/" + std::to_string(term.x.q) + ": ";
        for (WorkKind& kind : profile_plan<qmp::BSS_P2B3_Type0>(kelvara::ArcSinlemnSeries(term.x), p)) {
            kinds.push_back({name + kind.name, kind.count, kind.seconds});
        }
    }
    return kinds;
}

std::vector<WorkKind> profile_e(bool negative, std::uint64_t p) {
    const qmp::Series_e_Taylor series(negative);
    Profile<qmp::Series_e_Taylor> profile(series, series.TermsForPrecision(p),
                                          2 * (p / 2 + series.size_margin),
                                          qmp::BSR_sizes(series, p, 1, 1).words);
    profile.sum(1, series.TermsForPrecision(p), 1);
    return profile.kinds();
}

std::vector<WorkKind> profile_gamma(bool refined, std::uint64_t p) {
    const auto exponent = static_cast<std::int32_t>(kelvara::brent_mcmillan_exponent(p)) - (refined ? 1 : 0);
    const qmp::Series_EulerGamma_BM_AB series(exponent);
    const qmp::PsrPlan plan = qmp::build_psr_plan(series, p, 1.0);
    Profile<qmp::Series_EulerGamma_BM_AB> profile(series, plan.terms, series.largest_product(plan),
                                                  series.SizesForPlan(plan, 0, 1).exact_words);
    sum_blocks(profile, plan);
    return profile.kinds();
}

}  // namespace

std::vector<WorkKind> profile_series(const Computation& computation, std::uint64_t precision) {
    const auto made = make_constant(computation.constant);
    made->set_algorithm_keyword(computation.algorithm);
    const std::uint32_t algorithm = made->algorithm();
    switch (made->id()) {
        case kelvara::id_e:
            return profile_e(algorithm == 1, precision);
        case kelvara::id_pi: {
            const kelvara::PiFormula& formula = kelvara::pi_formula(algorithm);
            return profile_plan(formula.series, precision, formula.reduced ? 0.5 : 1.0);
        }
        case kelvara::id_arccoth:
            return profile_plan<qmp::BSS_P2B3_Type0>(kelvara::ArcCothSeries(*made->argument()), precision);
        case kelvara::id_zeta3:
            return profile_plan(kelvara::zeta3_formula(algorithm).series, precision);
        case kelvara::id_lemniscate:
            return profile_lemniscate(kelvara::lemniscate_formula(algorithm), precision);
        case kelvara::id_catalan:
            if (algorithm == 1) return profile_plan(kelvara::catalan_huvent_series(), precision);
            return profile_plan(kelvara::catalan_lupas_formula().series, precision);
        case kelvara::id_euler_gamma:
            return profile_gamma(algorithm == 0, precision);
        default:
            return {};
    }
}

}  // namespace bench
