#include "platform/parallel/windows_pool_parallelizer.h"

#include "console/console.h"
#include "errors/fatal.h"
#include "errors/system_exception.h"
#include "platform/os/thread_start.h"
#include "platform/parallel/spare_processor.h"

namespace qmp {
namespace {

[[noreturn]] void end_after_exception() {
    claim_last_words();
    try {
        throw;
    } catch (const Exception& exception) {
        exception.print();
    } catch (const std::exception& exception) {
        console::print_warning(exception.what());
    } catch (...) {
        console::print_warning("FATAL ERROR: Unhandled exception in child thread.");
    }
    console::terminate(1);
}

// Runs an action's task 0 and then something that must not throw.
template <typename Afterwards>
class FirstTask final : public os::ThreadPoolTask {
  public:
    FirstTask(BasicAction& action, Afterwards afterwards) : action_(action), afterwards_(afterwards) {}

    void run() noexcept override {
        os::prepare_thread_for_crashes();
        try {
            action_.run(0);
        } catch (...) {
            end_after_exception();
        }
        afterwards_();
    }

  private:
    BasicAction& action_;
    Afterwards afterwards_;
};

// A task in the pool's hands until the end of its life.
class SubmittedWork {
  public:
    SubmittedWork(os::ThreadPool& pool, os::ThreadPoolTask& task) : pool_(pool) {
        std::uint32_t error_code = 0;
        work_ = pool_.create(task, error_code);
        if (work_ == nullptr) {
            throw SystemException("CreateThreadpoolWork()", "Unable to create thread pool work.", error_code);
        }
        pool_.submit(work_);
    }
    ~SubmittedWork() {
        const ThreadAtRest at_rest;
        pool_.wait(work_);
        pool_.close(work_);
    }
    SubmittedWork(const SubmittedWork&) = delete;
    SubmittedWork& operator=(const SubmittedWork&) = delete;

  private:
    os::ThreadPool& pool_;
    os::ThreadPool::Work* work_;
};

}  // namespace

void WindowsPoolParallelizer::run_in_parallel(BasicAction& a, BasicAction& b) {
    Pair pair(*this);
    FirstTask task(a, [&pair] { pair.end_task(); });
    const SubmittedWork work(pool_, task);
    b.run(0);
}

}  // namespace qmp
