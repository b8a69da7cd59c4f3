// How many processors have nothing to do, as far as a framework's account of its tasks knows.
#pragma once

#include <atomic>
#include <cstdint>

namespace qmp {

class SpareProcessor {
  public:
    // The count of threads with work. Whoever gives a thread work counts it, not that thread, so that it
    // counts while it is being woken. The thread that started it all is counted from the beginning.
    static void begin_work() { at_work_.fetch_add(1, std::memory_order_relaxed); }
    static void end_work() { at_work_.fetch_sub(1, std::memory_order_relaxed); }

    // Processors without work at the moment.
    static std::uint64_t count() {
        const std::int64_t idle = processors() - at_work_.load(std::memory_order_relaxed);
        return idle > 0 ? static_cast<std::uint64_t>(idle) : 0;
    }

  private:
    static std::int64_t processors();

    // A hint only: no result depends on it.
    static std::atomic<std::int64_t> at_work_;
};

// The calling thread waits for others and leaves its processor to them.
class ThreadAtRest {
  public:
    ThreadAtRest() { SpareProcessor::end_work(); }
    ~ThreadAtRest() { SpareProcessor::begin_work(); }
    ThreadAtRest(const ThreadAtRest&) = delete;
    ThreadAtRest& operator=(const ThreadAtRest&) = delete;
};

}  // namespace qmp
