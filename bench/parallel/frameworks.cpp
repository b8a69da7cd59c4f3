#include "dispatchers.h"
#include "platform/parallel/registry.h"

namespace bench {
namespace {

class FrameworkDispatcher final : public Dispatcher {
  public:
    explicit FrameworkDispatcher(const std::string& key) : framework_(qmp::make_parallelizer(key)) {
        framework_->warm_up();
    }
    std::string name() const override { return framework_->get_type_name(); }
    void run_range(qmp::BasicAction& task, std::uint64_t n) override {
        framework_->run_in_parallel(task, 0, n);
    }

    void run_halves(qmp::BasicAction& task, std::uint64_t depth) override {
        if (depth == 0) {
            task.run(0);
            return;
        }
        auto half = [&](std::uint64_t) { run_halves(task, depth - 1); };
        qmp::FunctionAction action(half);
        framework_->run_in_parallel(action, action);
    }

    bool run_halves_where_idle(qmp::BasicAction& task, std::uint64_t depth) override {
        if (depth == 0) {
            task.run(0);
            return true;
        }
        auto half = [&] { run_halves_where_idle(task, depth - 1); };
        qmp::ParallelContext{2, framework_.get()}.run_pair(half, half);
        return true;
    }

  private:
    std::unique_ptr<qmp::BasicParallelizer> framework_;
};

}  // namespace

std::vector<std::unique_ptr<Dispatcher>> framework_dispatchers(const std::vector<std::string>& keys) {
    std::vector<std::unique_ptr<Dispatcher>> dispatchers;
    for (const std::string& key : keys) dispatchers.push_back(std::make_unique<FrameworkDispatcher>(key));
    return dispatchers;
}

}  // namespace bench
