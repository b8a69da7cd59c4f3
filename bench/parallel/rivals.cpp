#include <omp.h>

#include <future>

#include "dispatchers.h"

namespace bench {
namespace {

// One call for each task but the first, which the calling thread keeps.
class AsyncByHand final : public Dispatcher {
  public:
    std::string name() const override { return "std::async"; }

    void run_range(qmp::BasicAction& task, std::uint64_t n) override {
        std::vector<std::future<void>> calls;
        calls.reserve(n);
        for (std::uint64_t i = 1; i < n; ++i)
            calls.push_back(std::async(std::launch::async, [&task, i] { task.run(i); }));
        if (n > 0) task.run(0);
        for (std::future<void>& call : calls) call.get();
    }

    void run_halves(qmp::BasicAction& task, std::uint64_t depth) override {
        if (depth == 0) {
            task.run(0);
            return;
        }
        std::future<void> half = std::async(std::launch::async, [&] { run_halves(task, depth - 1); });
        run_halves(task, depth - 1);
        half.get();
    }
};

class OpenMp final : public Dispatcher {
  public:
    std::string name() const override { return "OpenMP"; }

    void run_range(qmp::BasicAction& task, std::uint64_t n) override {
#pragma omp parallel for schedule(dynamic, 1)
        for (std::uint64_t i = 0; i < n; ++i) task.run(i);
    }

    void run_halves(qmp::BasicAction& task, std::uint64_t depth) override {
#pragma omp parallel
#pragma omp single
        halves(task, depth);
    }

  private:
    static void halves(qmp::BasicAction& task, std::uint64_t depth) {
        if (depth == 0) {
            task.run(0);
            return;
        }
#pragma omp task default(none) shared(task) firstprivate(depth)
        halves(task, depth - 1);
        halves(task, depth - 1);
#pragma omp taskwait
    }
};

}  // namespace

std::vector<std::unique_ptr<Dispatcher>> rival_dispatchers() {
    std::vector<std::unique_ptr<Dispatcher>> rivals;
    rivals.push_back(std::make_unique<AsyncByHand>());
    rivals.push_back(std::make_unique<OpenMp>());
    return rivals;
}

}  // namespace bench
