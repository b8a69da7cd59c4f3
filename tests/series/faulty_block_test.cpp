// Evaluations in which one word of one leaf comes out wrong: they stop at the block that holds it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "constants/pi_formulas.h"
#include "errors/bsr_modular_check.h"
#include "platform/parallel/registry.h"
#include "series/sum_series.h"
#include "series/test_series.h"
#include "support/computation_memory.h"

namespace qmp {
namespace {

using kelvara::BSRModularCheckFailedException;
using kelvara_test::ComputationMemory;

constexpr std::uint64_t precision = 2000;

// Chudnovsky's series on hardware that flips a bit of one output when it sums the leaf that holds a term.
class FaultySeries final : public BSS_P2B3_Type0 {
  public:
    FaultySeries(std::uint64_t term, std::size_t output)
        : BSS_P2B3_Type0(sound().alternating, sound().size_margin, sound().leaf_size, sound().cost),
          term_(term),
          output_(output) {}

    static const BSS_P2B3_Type0& sound() { return kelvara::pi_formula(0).series; }

    void BSR_End(ExactFloat& P, ExactFloat& Q, ExactFloat& R, const MultiplyContext& context, std::uint64_t a,
                 std::uint64_t b) const override {
        sound().BSR_End(P, Q, R, context, a, b);
        ExactFloat* const outputs[] = {&P, &Q, &R};
        if (a < term_ && term_ <= b) outputs[output_]->T[0] ^= 16;
    }

  private:
    std::uint64_t term_;
    std::size_t output_;
};

class Messages final : public SilentProgress {
  public:
    void begin_step(std::string_view, std::string_view) override { steps++; }
    void end_step() override { steps--; }
    void message(std::string_view text, console::Colour colour) override {
        EXPECT_EQ(colour, 'R');
        texts.emplace_back(text);
    }
    std::vector<std::string> texts;
    int steps = 0;
};

// What is wrong in the output that the leaf gave, and in those that it enters.
void expect_stopped_at(const PsrBlock& block, std::uint64_t term, std::size_t output,
                       const std::vector<bool>& wrong, ParallelContext parallel) {
    SCOPED_TRACE(testing::Message() << "term " << term << ", output " << output << ", " << parallel.tds
                                    << " tasks");
    const FaultySeries series(term, output);
    ComputationMemory memory(memory_estimate(series, precision, parallel.tds),
                             sum_largest_product(series, precision));
    Messages progress;
    try {
        SumSeries(series, memory.context(parallel, &progress), precision, 13591409, 1, 1);
        ADD_FAILURE() << "not found";
    } catch (const BSRModularCheckFailedException& e) {
        EXPECT_EQ(e.a(), block.a);
        EXPECT_EQ(e.b(), block.b);
        ASSERT_EQ(e.hash().size(), wrong.size());
        for (std::size_t i = 0; i < wrong.size(); i++) EXPECT_EQ(e.hash()[i] != 0, wrong[i]) << i;
    }
    EXPECT_EQ(progress.texts, std::vector{"Modular Redundancy Check Failed: " + std::to_string(block.a) +
                                          " : " + std::to_string(block.b)});
    EXPECT_EQ(progress.steps, 0);
    EXPECT_EQ(memory.region().count(), 0u);
}

TEST(FaultyBlock, StopsTheSummation) {
    const PsrPlan plan = build_psr_plan(FaultySeries::sound(), precision, 1.0);
    ASSERT_GT(plan.blocks.size(), 3u);
    const auto framework = make_default_parallelizer();
    for (const std::size_t i :
         {std::size_t{0}, std::size_t{1}, plan.blocks.size() / 2, plan.blocks.size() - 1}) {
        const PsrBlock& block = plan.blocks[i];
        for (const std::uint64_t tasks : {1u, 2u, 16u}) {
            const ParallelContext parallel = {tasks, framework.get()};
            // P enters nothing but P; the first leaf's Q and the last leaf's R nothing but their own kind.
            expect_stopped_at(block, (block.a + block.b + 1) / 2, 0, {true, false, false}, parallel);
            expect_stopped_at(block, block.a + 1, 1, {false, true, false}, parallel);
            expect_stopped_at(block, block.b, 2, {false, false, true}, parallel);
        }
        if (block.b - block.a < 2 * FaultySeries::sound().leaf_size) continue;
        // Elsewhere they enter P as well.
        expect_stopped_at(block, block.b, 1, {true, true, false}, ParallelContext::sequential());
        expect_stopped_at(block, block.a + 1, 2, {true, false, true}, ParallelContext::sequential());
    }
}

// The series itself is sound: nothing stops it when no term is wrong.
TEST(FaultyBlock, SoundTermsPass) {
    const FaultySeries series(0, 0);
    ComputationMemory memory(memory_estimate(series, precision, 2), sum_largest_product(series, precision));
    const auto framework = make_default_parallelizer();
    Messages progress;
    EXPECT_NO_THROW(
        SumSeries(series, memory.context({2, framework.get()}, &progress), precision, 13591409, 1, 1));
    EXPECT_TRUE(progress.texts.empty());
}

}  // namespace
}  // namespace qmp
