#include "constants/bbp/term_sum.h"

#include <algorithm>
#include <atomic>
#include <utility>
#include <vector>

#include "console/console.h"
#include "constants/bbp/block_sum.h"
#include "constants/bbp/levels.h"
#include "platform/parallel/basic_action.h"
#include "platform/parallel/run_on_threads.h"

namespace kelvara::bbp {
namespace {

class SumAction final : public qmp::BasicAction {
  public:
    SumAction(const Term& term, std::uint64_t count, std::uint64_t words, const ThreadPlan& plan,
              const BlocksDone& blocks_done)
        : term_(term),
          count_(count),
          blocks_((count + block_terms - 1) / block_terms),
          plan_(plan),
          blocks_done_(blocks_done) {
        // Not by the threads: memory that is not there has to be told by an exception.
        const std::uint64_t threads =
            std::clamp<std::uint64_t>(plan.threads, 1, std::max<std::uint64_t>(blocks_, 1));
        sums_.reserve(threads);
        for (std::uint64_t i = 0; i < threads; ++i) sums_.emplace_back(current_kernels(), words);
    }

    std::uint64_t threads() const { return sums_.size(); }

    // No thread takes another block.
    void stop() { next_.store(blocks_, std::memory_order_relaxed); }

    void run(std::uint64_t thread) override {
        if (plan_.bind) plan_.bind(thread);
        for (;;) {
            const std::uint64_t block = next_.fetch_add(1, std::memory_order_relaxed);
            if (block >= blocks_) return;
            const std::uint64_t first = block * block_terms;
            sums_[thread].add(term_, first, std::min(first + block_terms, count_));
            const std::uint64_t done = done_.fetch_add(1, std::memory_order_relaxed) + 1;
            if (thread == 0) blocks_done_(done, blocks_);
        }
    }

    ChunkFraction total() const {
        ChunkFraction sum = sums_[0].fraction();
        for (std::size_t i = 1; i < sums_.size(); ++i) sum.add(sums_[i].fraction());
        return sum;
    }

  private:
    const Term& term_;
    const std::uint64_t count_;
    const std::uint64_t blocks_;
    const ThreadPlan& plan_;
    const BlocksDone& blocks_done_;
    std::vector<BlockSum> sums_;
    std::atomic<std::uint64_t> next_{0};
    std::atomic<std::uint64_t> done_{0};
};

}  // namespace

Fraction sum_of(const Term& term, std::uint64_t count, std::uint64_t words, const ThreadPlan& plan,
                const BlocksDone& blocks_done) {
    if (!within_limit(term, count)) {
        qmp::console::fatal_error("Maximum coefficient size of 2^49 has been exceeded.");
    }
    SumAction action(term, count, words, plan, blocks_done);
    // The threads that were started must not first do the work of days.
    const auto start_or_stop = [&](std::function<void()> work) {
        try {
            return plan.start(std::move(work));
        } catch (...) {
            action.stop();
            throw;
        }
    };
    qmp::run_on_threads(action, 0, action.threads(), 0, start_or_stop);
    return Fraction(action.total(), words);
}

}  // namespace kelvara::bbp
