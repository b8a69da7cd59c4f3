// What a computation takes of its reserved memory, phase by phase, beside what was promised for it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "constants/catalogue.h"
#include "platform/parallel/registry.h"
#include "radix/output_driver.h"
#include "support/computation_memory.h"
#include "support/sanitized.h"

namespace kelvara {
namespace {

using kelvara_test::ComputationMemory;

// For each step: how high the blocks came to lie in the region, and how much there was written meanwhile.
class PhaseMemory final : public qmp::SilentProgress {
  public:
    struct Phase {
        std::string name;
        std::uint64_t peak = 0;
        std::uint64_t written = 0;  // with what stood there before
    };

    explicit PhaseMemory(ComputationMemory& memory) : memory_(memory) {}

    void begin_step(std::string_view, std::string_view status) override {
        between_ = std::max(between_, memory_.region().peak_bytes());
        phases.push_back({std::string(status)});
        begin_ = memory_.region().used_bytes();
        memory_.forget_unused();
        memory_.region().restart_peak();
    }
    void end_step() override {
        phases.back().peak = memory_.region().peak_bytes();
        phases.back().written = begin_ + memory_.bytes_written(begin_);
        memory_.region().restart_peak();
    }
    // The highest use between the steps until now.
    std::uint64_t between() const { return std::max(between_, memory_.region().peak_bytes()); }

    std::vector<Phase> phases;

  private:
    ComputationMemory& memory_;
    std::uint64_t begin_ = 0;
    std::uint64_t between_ = 0;
};

class DroppingSink final : public qmp::DigitSink {
  public:
    void write(char*, std::uint64_t) override {}
    void finish() override {}
};

struct Algorithm {
    ConstantId id;
    const char* keyword;
};

void PrintTo(const Algorithm& algorithm, std::ostream* stream) {
    *stream << algorithm.keyword;
}

class Memory : public testing::TestWithParam<Algorithm> {
  protected:
    static std::unique_ptr<RamComputation> computation(std::uint64_t digits, std::uint64_t tasks) {
        const auto constant = make_constant(GetParam().id);
        constant->set_algorithm_keyword(GetParam().keyword);
        constant->set_size(precision_for_digits(digits));
        return constant->make_ram_computation(tasks);
    }
};

// What sentinels and alignment add; a phase holds no more arrays at a time.
constexpr std::uint64_t overheads = 10 * qmp::checked_array_overhead(64);

// "96 % of the figure in use, 80 % written" for each phase.
void print_phases(std::uint64_t figure, const std::vector<PhaseMemory::Phase>& phases) {
    const auto percent = [&](std::uint64_t bytes) {
        return 100.0 * static_cast<double>(bytes) / static_cast<double>(figure);
    };
    for (const PhaseMemory::Phase& phase : phases) {
        std::printf("  %s %.1f (%.1f)", phase.name.c_str(), percent(phase.peak), percent(phase.written));
    }
    std::printf("\n");
}

// The slack of a phase is printed: what it used, and in parentheses what it wrote, in percent of the figure
// that is reserved.
TEST_P(Memory, NoPhaseTakesMoreThanItsFigure) {
    const auto framework = qmp::make_default_parallelizer();
    for (const std::uint64_t digits : {1'000u, 10'000u, 100'000u, 1'000'000u}) {
        if (kelvara_test::sanitized && digits > 100'000) continue;
        for (const std::uint64_t tasks : {1u, 2u, 3u, 16u}) {
            SCOPED_TRACE(testing::Message() << digits << " digits, " << tasks << " tasks");
            const auto made = computation(digits, tasks);
            const std::uint64_t output = qmp::decimal_output_bytes(digits, tasks);
            const std::uint64_t reserved = std::max(made->working_bytes(), output);
            ComputationMemory memory(
                reserved, std::max(made->largest_product(), qmp::decimal_output_largest_product(digits)));
            PhaseMemory progress(memory);
            const qmp::ComputeContext context = memory.context({tasks, framework.get()}, &progress);
            std::size_t computing;
            {
                const qmp::OwnedBigFloat value = made->compute(context);
                computing = progress.phases.size();
                qmp::write_decimal(context, value.number, digits,
                                   [](const std::string&) { return std::make_unique<DroppingSink>(); });
            }
            EXPECT_EQ(memory.region().count(), 0u);
            EXPECT_LE(progress.between(), reserved + overheads);

            ASSERT_EQ(computing, GetParam().id == id_pi ? 4u : 2u);
            ASSERT_EQ(progress.phases.size(), computing + 3);
            for (std::size_t i = 0; i < progress.phases.size(); ++i) {
                const PhaseMemory::Phase& phase = progress.phases[i];
                EXPECT_LE(phase.peak, (i < computing ? made->working_bytes() : output) + overheads)
                    << phase.name;
                // The figure that screens show for e counts the parts of its fraction too low while they
                // are divided; what is reserved does not.
                if (i < computing && (GetParam().id == id_pi || phase.name == "Summing Series")) {
                    EXPECT_LE(phase.peak, made->memory_estimate() + overheads) << phase.name;
                }
                EXPECT_LE(phase.written, phase.peak) << phase.name;
            }
            std::printf("%7llu digits, %2llu tasks: %9llu bytes", static_cast<unsigned long long>(digits),
                        static_cast<unsigned long long>(tasks), static_cast<unsigned long long>(reserved));
            print_phases(reserved, progress.phases);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryAlgorithm, Memory,
                         testing::Values(Algorithm{id_pi, "chudnovsky"}, Algorithm{id_pi, "ramanujan"},
                                         Algorithm{id_pi, "chudnovsky-reduced"},
                                         Algorithm{id_pi, "ramanujan-reduced"}, Algorithm{id_e, "exp(1)"},
                                         Algorithm{id_e, "exp(-1)"}));

}  // namespace
}  // namespace kelvara
