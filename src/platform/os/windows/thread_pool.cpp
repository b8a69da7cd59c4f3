#include "platform/os/thread_pool.h"

#include <windows.h>

namespace qmp::os {
namespace {

void CALLBACK run_task(PTP_CALLBACK_INSTANCE, void* task, PTP_WORK) {
    static_cast<ThreadPoolTask*>(task)->run();
}

PTP_WORK system_work(ThreadPool::Work* work) {
    return reinterpret_cast<PTP_WORK>(work);
}

class SystemThreadPool final : public ThreadPool {
  public:
    Work* create(ThreadPoolTask& task, std::uint32_t& error_code) override {
        const PTP_WORK work = CreateThreadpoolWork(run_task, &task, nullptr);
        if (work == nullptr) error_code = GetLastError();
        return reinterpret_cast<Work*>(work);
    }
    void submit(Work* work) override { SubmitThreadpoolWork(system_work(work)); }
    void wait(Work* work) override { WaitForThreadpoolWorkCallbacks(system_work(work), FALSE); }
    void close(Work* work) override { CloseThreadpoolWork(system_work(work)); }
};

}  // namespace

ThreadPool* system_thread_pool() {
    static SystemThreadPool pool;
    return &pool;
}

}  // namespace qmp::os
