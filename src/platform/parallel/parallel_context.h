// How an operation is to run in parallel: the number of tasks to cut it into, and the framework.
//
// Passed by value everywhere. Results never depend on it.
#pragma once

#include <cstdint>

#include "platform/parallel/basic_parallelizer.h"

namespace qmp {

struct ParallelContext {
    std::uint64_t tds;  // task decomposition, at least 1
    BasicParallelizer* parallelizer;

    // One task, on the calling thread: for work that must not fan out.
    static ParallelContext sequential();

    ParallelContext with_tasks(std::uint64_t tasks) const { return {tasks, parallelizer}; }

    template <typename Callable>
    void run(std::uint64_t start, std::uint64_t end, Callable&& callable) const {
        FunctionAction action(callable);
        parallelizer->run_in_parallel(action, start, end);
    }
    // Two halves of a computation. Where no processor is idle the calling thread does both: more threads than
    // processors would share the caches, and each would keep its own memory at work.
    template <typename A, typename B>
    void run_pair(A&& a, B&& b) const {
        if (parallelizer->idle_processors() == 0) {
            a();
            b();
            return;
        }
        auto run_a = [&](std::uint64_t) { a(); };
        auto run_b = [&](std::uint64_t) { b(); };
        FunctionAction action_a(run_a);
        FunctionAction action_b(run_b);
        parallelizer->run_in_parallel(action_a, action_b);
    }
};

// A cut of n items into equal blocks for parallel work: blocks of ceil(n / tasks) items, but at least
// `smallest` items (the task count shrinks accordingly). n = 0 gives no block.
struct BlockCut {
    std::uint64_t block;
    std::uint64_t count;

    static BlockCut of(std::uint64_t n, std::uint64_t tasks, std::uint64_t smallest) {
        if (n == 0) return {smallest, 0};
        if (tasks == 0) tasks = 1;
        std::uint64_t block = (n + tasks - 1) / tasks;
        if (block < smallest) block = smallest;
        return {block, (n + block - 1) / block};
    }
    std::uint64_t begin(std::uint64_t i) const { return i * block; }
    std::uint64_t end(std::uint64_t i, std::uint64_t n) const {
        const std::uint64_t stop = (i + 1) * block;
        return stop < n ? stop : n;
    }
};

}  // namespace qmp
