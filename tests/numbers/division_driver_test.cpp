#include "numbers/division_driver.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "errors/exception.h"
#include "numbers/newton_expectations.h"
#include "numbers/newton_fixture.h"

namespace {

using namespace kelvara_test;
using qmp::ComputeContext;
using qmp::ParallelContext;

// Writes down what is reported.
class RecordingProgress final : public qmp::Progress {
  public:
    void begin_step(std::string_view title, std::string_view status) override {
        lines.push_back("step " + std::string(title) + "|" + std::string(status));
    }
    void note(std::string_view, qmp::console::Colour) override { lines.push_back("note"); }
    void push_label(std::string_view text, qmp::console::Colour) override {
        labels.emplace_back(text);
        std::string all;
        for (const auto& label : labels) all += label;
        lines.push_back(all);
    }
    void pop_label() override { labels.pop_back(); }
    void end_step() override { lines.push_back("end"); }
    void message(std::string_view, qmp::console::Colour) override { lines.push_back("message"); }

    std::vector<std::string> lines;
    std::vector<std::string> labels;
};

// A computation's memory: a region, twiddle tables and a record of the progress.
struct Computation {
    explicit Computation(std::uint64_t p, std::uint64_t bytes)
        : heap(bytes / 8),
          region(heap.data(), heap.size() * 8),
          table(qmp::TwiddleSet::bytes_needed(qmp::newton_largest_product(p)) / 8 + 8),
          twiddles(table.data(), table.size() * 8, qmp::newton_largest_product(p),
                   ParallelContext::sequential()) {}
    ComputeContext context() { return {ParallelContext::sequential(), &twiddles, &region, &progress}; }

    WatchedWords heap;
    qmp::RegionAllocator region;
    WatchedWords table;
    qmp::TwiddleSet twiddles;
    RecordingProgress progress;
};

TEST(DivisionDriver, StepsLabelsAndResult) {
    Computation computation(41, 1 << 20);
    const auto q = qmp::divide(computation.context(), view_of({10}), view_of({7}), 41);
    expect_quotient(q.number, view_of({10}), view_of({7}), 41);
    EXPECT_EQ(q.number.AL, 44u);
    q.check();
    const std::vector<std::string> expected{
        "step Division...|Division", "Iterating: ", "Iterating: 0", "Iterating: 00", "Iterating: 000",
        "Iterating: 00 - 0M - 6",
    };
    ASSERT_GE(computation.progress.lines.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(computation.progress.lines[i], expected[i]);
    const auto& lines = computation.progress.lines;
    const std::vector<std::string> last(lines.end() - 4, lines.end());
    EXPECT_EQ(last, (std::vector<std::string>{"Iterating:  - 0M - 21", "Iterating:  - 1M - 21",
                                              "Iterating:  - 2M - 21", "end"}));
    EXPECT_TRUE(computation.progress.labels.empty());
}

TEST(DivisionDriver, InverseSquareRootStepsAndResult) {
    Computation computation(40, 1 << 20);
    const auto r = qmp::inverse_square_root(computation.context(), 5, 40);
    expect_inverse_root(r.number, 5, 40);
    EXPECT_EQ(r.number.AL, 47u);
    const auto& lines = computation.progress.lines;
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(lines[0], "step InvSqrt...|InvSqrt");
    EXPECT_EQ(lines[1], "Iterating: ");
    EXPECT_EQ(lines[lines.size() - 3], "Iterating:  - 0S - 20");
    EXPECT_TRUE(lines[lines.size() - 2] == "Iterating:  - U1M - 20" ||
                lines[lines.size() - 2] == "Iterating:  - O1M - 20")
        << lines[lines.size() - 2];
    EXPECT_EQ(lines.back(), "end");
}

TEST(DivisionDriver, TheStepEndsAlsoWhenTheDivisionFails) {
    Computation computation(20, 1 << 20);
    EXPECT_THROW(qmp::divide(computation.context(), view_of({1}), {nullptr, 0, 0, 1}, 20),
                 qmp::ArithmeticException);
    EXPECT_EQ(computation.progress.lines.back(), "end");
    EXPECT_TRUE(computation.progress.labels.empty());
    EXPECT_EQ(computation.region.count(), 0u) << "every buffer was returned";
}

TEST(DivisionDriver, MemoryIsWithinTheEstimate) {
    for (std::uint64_t p : {1, 9, 10, 100, 1000}) {
        const std::uint64_t result = (p + 7) * 8 + qmp::checked_array_overhead(64);
        Computation division(p, result + qmp::divide_bytes(p, 1));
        qmp::divide(division.context(), view_of({1}), view_of({3}), p);
        Computation root(p, result + qmp::inverse_square_root_bytes(p, 1));
        qmp::inverse_square_root(root.context(), 3, p);
        EXPECT_GT(division.region.peak_bytes(), 0u);
        EXPECT_GT(root.region.peak_bytes(), 0u);
    }
}

}  // namespace
