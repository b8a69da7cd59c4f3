// The sum of one series over threads.
#pragma once

#include <cstdint>
#include <functional>

#include "constants/bbp/fraction.h"
#include "constants/bbp/terms.h"
#include "platform/parallel/child_thread.h"

namespace kelvara::bbp {

struct ThreadPlan {
    std::uint64_t threads = 1;
    // Called by each thread with its number, before it works; may be empty.
    std::function<void(std::uint64_t thread)> bind;
    qmp::StartThread start = qmp::start_child_thread;
};

// Told by one of the threads, after each of its blocks, how many of all blocks are done.
using BlocksDone = std::function<void(std::uint64_t done, std::uint64_t blocks)>;

// The sum for k in [0, count), modulo 1, cut to so many words; the same for every number of threads. Threads
// for which there are no blocks are not started; std::system_error, soon, where one cannot be started. Ends
// the program where a modulus exceeds the limit.
Fraction sum_of(const Term& term, std::uint64_t count, std::uint64_t words, const ThreadPlan& plan,
                const BlocksDone& blocks_done);

}  // namespace kelvara::bbp
