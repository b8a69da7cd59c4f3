// What the frameworks share that give one task of each pair to a thread of the system's: ranges are halved
// into pairs, but only into so many at once, and the tasks are counted.
//
// A range of many thousands of tasks would otherwise ask the system for as many threads, all of which but a
// few wait for one another. A pool of threads with a limit would even stand still, once every one of its
// threads waits for a task that has none. Beyond the bound the thread that has a range does its halves one
// after the other, and looks again at each further halving.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/parallel/basic_parallelizer.h"

namespace qmp {

class HalvingParallelizer : public BasicParallelizer {
  public:
    using BasicParallelizer::run_in_parallel;
    void run_in_parallel(BasicAction& action, std::uint64_t start, std::uint64_t end) override;
    // None where enough pairs are under way, whatever the processors do.
    std::uint64_t idle_processors() const override;

  protected:
    // About `most_pairs` pairs are under way at a time: threads that look at the same moment may each begin
    // one more, so that there are never twice as many. Callers that make pairs of their own ask for idle
    // processors first (ParallelContext::run_pair); a pair itself is never refused.
    explicit HalvingParallelizer(std::uint64_t most_pairs) : most_pairs_(most_pairs) {}

    // Some for each processor, and never so few that a hundred tasks could not be under way together.
    static std::uint64_t usual_most_pairs();

    // A pair under way, whose one task another thread is about to run. That task counts as work until its
    // thread says that it is over, or until the pair ends, whose task may never have run.
    class Pair {
      public:
        explicit Pair(HalvingParallelizer& framework);
        ~Pair();
        Pair(const Pair&) = delete;
        Pair& operator=(const Pair&) = delete;

        void end_task();

      private:
        HalvingParallelizer& framework_;
        std::atomic<bool> task_ended_{false};
    };

  private:
    bool has_enough_pairs() const { return pairs_.load(std::memory_order_relaxed) >= most_pairs_; }

    const std::uint64_t most_pairs_;
    std::atomic<std::uint64_t> pairs_{0};
};

}  // namespace qmp
