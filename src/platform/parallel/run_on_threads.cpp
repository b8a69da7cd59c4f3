#include "platform/parallel/run_on_threads.h"

#include <thread>
#include <vector>

#include "errors/fatal.h"

namespace qmp {
namespace {

void run_guarded(BasicAction& action, std::uint64_t index) {
    try {
        action.run(index);
    } catch (...) {
        end_after_child_thread_exception();
    }
}

// Joins whatever was started, also when the next thread could not be.
class JoiningThreads {
  public:
    explicit JoiningThreads(std::uint64_t count) { threads_.reserve(count); }
    ~JoiningThreads() {
        for (std::thread& thread : threads_) thread.join();
    }
    JoiningThreads(const JoiningThreads&) = delete;
    JoiningThreads& operator=(const JoiningThreads&) = delete;

    void start(BasicAction& action, std::uint64_t index) {
        threads_.emplace_back(run_guarded, std::ref(action), index);
    }

  private:
    std::vector<std::thread> threads_;
};

}  // namespace

void run_on_threads(BasicAction& action, std::uint64_t start, std::uint64_t end) {
    if (end <= start) return;
    JoiningThreads threads(end - start);
    for (std::uint64_t i = start; i < end; ++i) threads.start(action, i);
}

}  // namespace qmp
