// A thread pool that starts a thread for each run, for systems that have none, and one that refuses.
#pragma once

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "platform/os/thread_pool.h"

namespace kelvara_test {

class FakeThreadPool final : public qmp::os::ThreadPool {
  public:
    Work* create(qmp::os::ThreadPoolTask& task, std::uint32_t& error_code) override {
        if (granted == 0) {
            error_code = 8;
            return nullptr;
        }
        --granted;
        ++open;
        return reinterpret_cast<Work*>(new Threads{task, {}});
    }
    void submit(Work* work) override {
        Threads& threads = *threads_of(work);
        threads.running.emplace_back([&task = threads.task] { task.run(); });
    }
    void wait(Work* work) override {
        for (std::thread& thread : threads_of(work)->running) thread.join();
        threads_of(work)->running.clear();
    }
    void close(Work* work) override {
        --open;
        delete threads_of(work);
    }

    std::atomic<std::uint64_t> granted{~std::uint64_t{0}};  // further works that it creates
    std::atomic<int> open{0};                               // works that were not closed

  private:
    struct Threads {
        qmp::os::ThreadPoolTask& task;
        std::vector<std::thread> running;
    };
    static Threads* threads_of(Work* work) { return reinterpret_cast<Threads*>(work); }
};

}  // namespace kelvara_test
