#include "series/psr_plan.h"

#include <algorithm>
#include <cmath>

#include "console/console.h"
#include "console/format.h"
#include "series/series_constants.h"

namespace qmp {

namespace {

// A length in words from one in units of the natural logarithm.
std::uint64_t to_words(double units) {
    return static_cast<std::uint64_t>(std::llrint(units * series_constants().words_per_unit + 1.5));
}

class Planner {
  public:
    Planner(const BinarySplittingSeries& series, std::uint64_t p, double factor)
        : series_(series), cap_(static_cast<double>(p) * factor * series_constants().ln_word) {
        plan_.terms = series.TermsForPrecision(p);
        remainder_size_ = psr_size(series_, 0, plan_.terms);
    }

    PsrPlan run() {
        while (wants_block()) append(block_end());
        if (start_ < plan_.terms) append(plan_.terms);
        if (warned_) print_size();
        return std::move(plan_);
    }

  private:
    bool wants_block() const {
        const std::uint64_t remaining = plan_.terms - start_;
        if (remaining > psr_short_remainder) return true;
        return remaining > 0 && !plan_.blocks.empty() && plan_.blocks.back().size < remainder_size_;
    }

    // The first index at which the growth since the start reaches the cap, or what the tail still needs.
    std::uint64_t block_end() const {
        const double start_size = series_.SizeAtIndexPSR(static_cast<double>(start_));
        std::uint64_t low = start_;
        std::uint64_t high = plan_.terms;
        while (high - low > 1) {
            const std::uint64_t m = (low + high) >> 1;
            const double growth = series_.SizeAtIndexPSR(static_cast<double>(m)) - start_size;
            (growth < std::min(cap_, decay(m)) ? low : high) = m;
        }
        return high;
    }

    void append(std::uint64_t end) {
        plan_.blocks.push_back(
            {start_, end, to_words(decay(start_)), psr_size(series_, start_, end), to_words(decay(end))});
        start_ = end;
        remainder_size_ = psr_size(series_, start_, plan_.terms);
        if (!warned_ && plan_.blocks.size() > psr_block_warning) {
            console::print_warning("Performance Warning: PSR plan has exceeded 10000 blocks.");
            warned_ = true;
        }
    }

    void print_size() const {
        console::write("PSR plan has reached a size of ", 'w');
        console::println(console::format_int(plan_.blocks.size()), 'R');
        console::println("It is not recommended to proceed with such a computation.", 'w');
        console::newline();
        console::println("If you are seeing this message, then you are either having too much fun with", 'w');
        console::println("the parameter override, or there is a serious bug in the program.", 'w');
    }

    double decay(std::uint64_t from) const {
        return series_.DecayBetween(static_cast<double>(from), static_cast<double>(plan_.terms));
    }

    const BinarySplittingSeries& series_;
    double cap_;
    PsrPlan plan_;
    std::uint64_t start_ = 0;
    std::uint64_t remainder_size_ = 0;
    bool warned_ = false;
};

}  // namespace

std::uint64_t psr_size(const BinarySplittingSeries& series, std::uint64_t a, std::uint64_t b) {
    return to_words(series.SizeAtIndex(static_cast<double>(b)) - series.SizeAtIndex(static_cast<double>(a)));
}

PsrPlan build_psr_plan(const BinarySplittingSeries& series, std::uint64_t p, double factor) {
    return Planner(series, p, factor).run();
}

}  // namespace qmp
