// A framework for tests: one thread for each task, and a count of the tasks run.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "platform/parallel/parallel_context.h"

namespace kelvara_test {

class ThreadPerTask final : public qmp::BasicParallelizer {
  public:
    void run_in_parallel(qmp::BasicAction& action, std::uint64_t start, std::uint64_t end) override {
        std::vector<std::thread> running;
        for (std::uint64_t i = start; i < end; ++i) {
            ++tasks_run_;
            running.emplace_back([&action, i] { action.run(i); });
        }
        for (auto& thread : running) thread.join();
    }
    void run_in_parallel(qmp::BasicAction& a, qmp::BasicAction& b) override {
        tasks_run_ += 2;
        std::thread thread([&a] { a.run(0); });
        b.run(0);
        thread.join();
    }
    const char* get_type_name() const override { return "test"; }
    const char* get_display_name() const override { return "Thread per Task"; }

    qmp::ParallelContext context(std::uint64_t tasks) { return {tasks, this}; }
    std::uint64_t tasks_run() const { return tasks_run_; }
    void forget() { tasks_run_ = 0; }

  private:
    std::atomic<std::uint64_t> tasks_run_{0};
};

}  // namespace kelvara_test
