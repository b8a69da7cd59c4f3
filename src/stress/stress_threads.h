// The threads of the tester, each of its own and, in Local mode, on a core of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include "stress/stress_machine.h"
#include "stress/stress_settings.h"

namespace kelvara {

class StressThreads {
  public:
    StressThreads(const StressMachine& machine, const StressSettings& settings)
        : machine_(machine), local_(settings.mode == StressMode::local), threads_(settings.threads) {}

    std::uint64_t count() const { return threads_; }

    // Runs body(i) on a thread for every i in [0, count) and waits for all of them. Thread i is bound to core
    // i, from the first core again where there are more threads than cores; a refusal is told once for each
    // core, and the thread runs unbound. Where the system has no more threads to give, `abandon` is called
    // before the others are waited for, and the call ends with SystemException.
    void run(
        std::uint64_t count, const std::function<void(std::uint64_t)>& body,
        const std::function<void()>& abandon = [] {});

  private:
    void bind(std::uint64_t thread);

    const StressMachine& machine_;
    bool local_;
    std::uint64_t threads_;
    std::mutex mutex_;
    std::vector<bool> refused_;  // by core
};

}  // namespace kelvara
