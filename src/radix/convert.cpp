#include "radix/convert.h"

#include <algorithm>
#include <string>
#include <thread>

#include "console/format.h"
#include "radix/convert_basecase.h"
#include "radix/digit_counts.h"
#include "radix/fractional_product.h"

namespace qmp {
namespace {

// A label's texts and its numbers.
constexpr console::Colour text_colour = 'G';
constexpr console::Colour size_colour = 'Y';
// Nodes with fewer words are over before anybody could read their label.
constexpr std::uint64_t smallest_labelled_node = 4096;

constexpr const char* sequential_name = "convert_L()";
constexpr const char* parallel_name = "qmq_CBRv2_ci_btrf_T()";

// A part of the label with a count of decimal digits: "-  1,234", " -> 2 x 617".
class DigitsLabel {
  public:
    DigitsLabel(Progress* progress, const char* text, const ConvertPlanP& plan, std::uint64_t digit_words)
        : text_(progress, text, text_colour),
          size_(progress, progress ? digits_of(plan, digit_words) : std::string(), size_colour) {}

  private:
    static std::string digits_of(const ConvertPlanP& plan, std::uint64_t digit_words) {
        return console::format_separated(word_to_dec(plan.fraction_words(-1, digit_words) - 2));
    }

    ScopedLabel text_;
    ScopedLabel size_;
};

class Conversion {
  public:
    Conversion(const ConvertPlanP& plan, const char* name, Progress* progress, ConvertHooks* hooks)
        : plan_(plan), name_(name), progress_(progress), hooks_(hooks), owner_(std::this_thread::get_id()) {}

    // The recursion; level is the highest that a node of m words may have. `parallel`: halves may be
    // converted at the same time.
    ConvertResult node(int level, Word* top, std::uint64_t m, FractionView f, const MultiplyContext& context,
                       bool parallel) const {
        if (plan_.levels() == 0 || m < convert_basecase_words || m < plan_.leaf()) return basecase(top, m, f);
        while (plan_.level(level).output_words >= m) --level;
        const std::uint64_t s = plan_.level(level).output_words;
        const std::uint64_t low_m = m - s;
        f = f.cut(plan_.fraction_words(level, m));

        Word* low_words = context.scratch;
        const MultiplyContext rest = context.after(plan_.low_fraction_words(level), name_);
        const FractionView low_f = split(level, m, low_m, f, low_words, rest);

        ConvertResult low;
        ConvertResult high;
        if (parallel && context.tds > 1 && level >= plan_.parallel_level()) {
            const DigitsLabel label(labelled(s), " -> 2 x ", plan_, s);
            const std::uint64_t low_tasks = context.tds / 2;
            // A transform of several tasks takes what scratch it is given: the halves must not see each
            // other's.
            const std::uint64_t low_scratch = plan_.node_scratch_words(level - 1, low_tasks);
            const MultiplyContext high_context = rest.after(low_scratch, name_);
            MultiplyContext low_context = rest.with_tasks(low_tasks);
            low_context.scratch_words = low_scratch;
            context.run_pair([&] { low = node(level - 1, top - s, low_m, low_f, low_context, true); },
                             [&] {
                                 high = node(level - 1, top, s, f,
                                             high_context.with_tasks(context.tds - low_tasks), true);
                             });
        } else {
            const DigitsLabel label(labelled(s), " -> 1 x ", plan_, s);
            // Transforms of small nodes are not worth a second thread either.
            const MultiplyContext halves = level >= plan_.parallel_level() ? rest : rest.with_tasks(1);
            low = node(level - 1, top - s, low_m, low_f, halves, parallel);
            high = node(level - 1, top, s, f, halves, parallel);
        }
        if (hooks_) hooks_->halves(top, s, low_m, high, low);
        return join(top, m, s, low, high);
    }

  private:
    ConvertResult basecase(Word* top, std::uint64_t m, FractionView f) const {
        Word work[convert_basecase_words + 2];
        ConvertResult result;
        result.guard = convert_basecase(plan_.base(), top, m, f.words, f.length, work);
        return result;
    }

    FractionView split(int level, std::uint64_t m, std::uint64_t low_m, FractionView f, Word* low_words,
                       const MultiplyContext& context) const {
        const DigitsLabel label(labelled(m), "-  ", plan_, m);
        return fractional_product(plan_, level, context, low_words, plan_.fraction_words(level - 1, low_m),
                                  f);
    }

    ConvertResult join(Word* top, std::uint64_t m, std::uint64_t s, const ConvertResult& low,
                       const ConvertResult& high) const {
        if (low.status) return low;
        if (high.status) return high;
        ConvertResult result = low;
        result.expected = top[-static_cast<std::ptrdiff_t>(s) - 1];
        if (!join_halves(plan_.base(), top, s, m - s, high.guard, result.guard)) {
            result.status = overlap_mismatch;
            result.function = name_;
            result.m = m;
            result.actual = high.guard;
        }
        return result;
    }

    // Labels belong to the thread that started the conversion.
    Progress* labelled(std::uint64_t words) const {
        return words >= smallest_labelled_node && std::this_thread::get_id() == owner_ ? progress_ : nullptr;
    }

    const ConvertPlanP& plan_;
    const char* name_;
    Progress* progress_;
    ConvertHooks* hooks_;
    std::thread::id owner_;
};

void report_mismatch(Progress* progress, const ConvertResult& result) {
    if (!progress || !result.function) return;
    progress->message(std::string(result.function) + ": Overlap Mismatch", 'R');
    if (result.function == sequential_name) progress->message("RL: " + std::to_string(result.m), 'R');
    progress->message("Expected: " + std::to_string(result.expected), 'R');
    progress->message("Actual: " + std::to_string(result.actual), 'R');
}

ConvertResult convert(const ConvertPlanP& plan, const MultiplyContext& context, const char* name,
                      bool parallel, Word* destination_top, std::uint64_t m, const Word* fraction,
                      std::uint64_t fraction_words, Progress* progress, ConvertHooks* hooks) {
    if (plan.status()) {
        ConvertResult refused;
        refused.status = plan.status();
        return refused;
    }
    const Conversion conversion(plan, name, progress, hooks);
    const ConvertResult result =
        conversion.node(plan.levels() - 1, destination_top, m, {fraction, fraction_words}, context, parallel);
    report_mismatch(progress, result);
    return result;
}

}  // namespace

ConvertResult convert_L(const ConvertPlanP& plan, const MultiplyContext& context, Word* destination_top,
                        std::uint64_t m, const Word* fraction, std::uint64_t fraction_words,
                        Progress* progress, ConvertHooks* hooks) {
    return convert(plan, context, sequential_name, false, destination_top, m, fraction, fraction_words,
                   progress, hooks);
}

ConvertResult qmq_CBRv2_ci_btrf_T(const ConvertPlanP& plan, const MultiplyContext& context,
                                  Word* destination_top, std::uint64_t m, const Word* fraction,
                                  std::uint64_t fraction_words, Progress* progress, ConvertHooks* hooks) {
    return convert(plan, context, parallel_name, true, destination_top, m, fraction, fraction_words, progress,
                   hooks);
}

}  // namespace qmp
