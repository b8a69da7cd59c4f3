// Terms of the digit extractor per second, beside plain integer arithmetic, as one table (--help).
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "constants/bbp/block_sum.h"
#include "constants/bbp/levels.h"
#include "constants/bbp/settings.h"
#include "multiply/instruction_levels.h"
#include "options.h"
#include "rivals.h"
#include "support/machine.h"
#include "support/timing.h"

namespace {

namespace bbp = kelvara::bbp;

// One block of each series, from the middle of the sum, on one thread.
class Blocks {
  public:
    Blocks(bbp::Formula formula, std::uint64_t offset, std::uint64_t digits)
        : terms_(bbp::terms(formula, offset)), first_(bbp::terms_needed(formula, offset, digits) / 2) {
        settings_.digits = digits;
    }

    std::uint64_t terms_of(std::uint64_t block) const { return terms_.size() * block; }
    std::uint64_t words() const { return settings_.precision_words(); }
    std::string sum() const {
        bbp::BlockSum sum(bbp::current_kernels(), words());
        for (const bbp::Term& term : terms_) sum.add(term, first_, first_ + bbp::block_terms);
        return bbp::Fraction(sum.fraction(), words()).hexadecimal_digits();
    }
    std::string sum_by(bench::RivalTerm rival, std::uint64_t block) const {
        bbp::ChunkFraction sum(words());
        std::vector<std::uint64_t> digits(sum.chunks());
        for (const bbp::Term& term : terms_) {
            for (std::uint64_t k = first_; k < first_ + block; ++k) {
                rival(static_cast<std::uint64_t>(term.exponent + term.step * static_cast<std::int64_t>(k)),
                      term.alpha * k + term.beta, digits.data(), digits.size());
            }
            sum.take(digits, 1);
        }
        return bbp::Fraction(sum, words()).hexadecimal_digits();
    }

  private:
    std::vector<bbp::Term> terms_;
    std::uint64_t first_;
    bbp::Settings settings_;
};

void print_line(const char* formula, std::uint64_t offset, const char* name, double rate, double plain) {
    std::printf("%-8s %14llu  %-22s %14.3f %10.2f\n", formula, static_cast<unsigned long long>(offset), name,
                rate / 1e6, rate / plain);
    std::fflush(stdout);
}

// Throws when two of them do not agree.
void print_rows(bbp::Formula formula, std::uint64_t offset, const bench::Options& options) {
    const Blocks blocks(formula, offset, options.digits);
    const char* name = formula == bbp::Formula::plouffe ? "Plouffe" : "Bellard";
    std::string digits;
    for (const bench::Rival& rival : bench::rivals()) {
        const std::string sum = blocks.sum_by(rival.term, bbp::block_terms);
        if (digits.empty()) digits = sum;
        if (sum != digits) throw std::runtime_error(std::string(rival.name) + " differs.");
    }
    for (const std::string& level : options.levels) {
        qmp::force_level(level);
        if (blocks.sum() != digits) throw std::runtime_error(level + " differs.");
    }

    // Rivals are slow: a part of a block does for them.
    constexpr std::uint64_t rival_block = bbp::block_terms / 10;
    std::vector<bench::Run> runs;
    for (const bench::Rival& rival : bench::rivals()) {
        runs.emplace_back([&blocks, &rival] { blocks.sum_by(rival.term, rival_block); });
    }
    for (const std::string& level : options.levels) {
        runs.emplace_back([&blocks, &level] {
            qmp::force_level(level);
            blocks.sum();
        });
    }
    const std::vector<double> seconds = bench::measure(runs, options.budget);
    const double plain = static_cast<double>(blocks.terms_of(rival_block)) / seconds[0];
    std::size_t i = 0;
    for (const bench::Rival& rival : bench::rivals()) {
        print_line(name, offset, rival.name, static_cast<double>(blocks.terms_of(rival_block)) / seconds[i++],
                   plain);
    }
    for (const std::string& level : options.levels) {
        print_line(name, offset, level.c_str(),
                   static_cast<double>(blocks.terms_of(bbp::block_terms)) / seconds[i++], plain);
    }
}

void print_table(const bench::Options& options) {
    bench::use_processor_time(options.processor_time);
    bench::print_processor();
    std::printf(
        "Rates:      millions of terms per second on one thread, in the middle of the sum, with %llu "
        "digits;\n"
        "            medians, in turns. The ratio is to the plain integers of the same formula and "
        "offset.\n\n",
        static_cast<unsigned long long>(options.digits));
    std::printf("%-8s %14s  %-22s %14s %10s\n", "formula", "offset", "", "Mterms/s", "ratio");
    for (const std::uint64_t offset : options.offsets) {
        for (const auto formula : {bbp::Formula::plouffe, bbp::Formula::bellard}) {
            print_rows(formula, offset, options);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const bench::Options options = bench::parse_options(argc, argv);
        if (options.help) {
            bench::print_help();
        } else {
            print_table(options);
        }
    } catch (const std::logic_error& e) {  // of the options
        std::fprintf(stderr, "bbp_bench: %s\n", e.what());
        return 2;
    } catch (const std::runtime_error& e) {
        std::fprintf(stderr, "bbp_bench: %s\n", e.what());
        return 1;
    }
    return 0;
}
