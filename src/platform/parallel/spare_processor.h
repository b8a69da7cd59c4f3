// Whether there is a processor to wait on without going to sleep.
//
// Going to sleep and being woken takes some 50 microseconds, and a woken thread may start on the processor of
// the one that woke it. The sweeps of a transform follow each other faster than that, so threads wait awake;
// but only as many of them as there are processors without work, since a thread that spins takes its
// processor from one that works.
#pragma once

#include <atomic>
#include <cstdint>

namespace qmp {

class SpareProcessor {
  public:
    // Waits awake, for about a millisecond at the most and while there is a processor to spare. True when
    // condition() came to hold.
    template <typename Condition>
    static bool wait(Condition condition) {
        constexpr std::uint32_t patience = 1 << 16;
        const Waiting waiting;
        for (std::uint32_t spins = 0; spins < patience; ++spins) {
            if (condition()) return true;
            // Not for a moment in which work passes from one thread to another.
            if (spins % 64 == 63 && !available()) return false;
            __builtin_ia32_pause();
        }
        return false;
    }

    // The count of threads with work. Whoever gives a thread work counts it, not that thread: one that waits
    // awake then makes room at once for the one that is being woken. The thread that started it all is
    // counted from the beginning.
    static void begin_work() { at_work_.fetch_add(1, std::memory_order_relaxed); }
    static void end_work() { at_work_.fetch_sub(1, std::memory_order_relaxed); }

    // Processors without work at the moment.
    static std::uint64_t count() {
        const std::int64_t idle = processors() - at_work_.load(std::memory_order_relaxed);
        return idle > 0 ? static_cast<std::uint64_t>(idle) : 0;
    }

  private:
    struct Waiting {
        Waiting() { waiting_.fetch_add(1, std::memory_order_relaxed); }
        ~Waiting() { waiting_.fetch_sub(1, std::memory_order_relaxed); }
    };
    static bool available() {
        return at_work_.load(std::memory_order_relaxed) + waiting_.load(std::memory_order_relaxed) <=
               processors();
    }
    static std::int64_t processors();

    // Hints only: nothing but the time that threads stay awake depends on them.
    static std::atomic<std::int64_t> at_work_;
    static std::atomic<std::int64_t> waiting_;
};

}  // namespace qmp
