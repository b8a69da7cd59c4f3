#include "platform/os/thread_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/os/process.h"

namespace qmp::os {
namespace {

TEST(ThreadPool, IsThereOnWindowsAlone) {
    EXPECT_EQ(system_thread_pool() != nullptr, system_name() == "Windows");
}

TEST(ThreadPool, RunsWhatIsSubmittedOnThreadsOfItsOwn) {
    ThreadPool* const pool = system_thread_pool();
    if (pool == nullptr) GTEST_SKIP() << "this system has no thread pool";
    class Counting final : public ThreadPoolTask {
      public:
        void run() noexcept override {
            if (std::this_thread::get_id() != submitter) ++runs;
        }
        std::thread::id submitter = std::this_thread::get_id();
        std::atomic<int> runs{0};
    } task;
    std::uint32_t error_code = 0;
    ThreadPool::Work* const work = pool->create(task, error_code);
    ASSERT_NE(work, nullptr) << error_code;
    for (int i = 0; i < 3; ++i) pool->submit(work);
    pool->wait(work);
    EXPECT_EQ(task.runs.load(), 3);
    pool->close(work);
}

}  // namespace
}  // namespace qmp::os
