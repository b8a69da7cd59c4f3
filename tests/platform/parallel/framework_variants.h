// Every framework of the build, the Push Pool and the asynchronous calls in their variants; the thread pool
// over a fake where the system has none.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/parallel/async_parallelizer.h"
#include "platform/parallel/halving_parallelizer.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/parallel/registry.h"
#include "platform/parallel/thread_pool_fake.h"
#include "platform/parallel/windows_pool_parallelizer.h"

namespace kelvara_test {

struct FrameworkVariant {
    std::string name;
    std::string key;
    std::uint64_t limit = 0;
    bool on = true;  // randomization, or only asynchronous calls

    std::unique_ptr<qmp::BasicParallelizer> make() const {
        static FakeThreadPool fake_pool;
        if (key == "fake") return std::make_unique<qmp::WindowsPoolParallelizer>(fake_pool);
        auto framework = qmp::make_parallelizer(key);
        framework->threads = limit;
        if (auto* pool = dynamic_cast<qmp::PushPoolParallelizer*>(framework.get())) pool->set_randomize(on);
        if (auto* async = dynamic_cast<qmp::AsyncParallelizer*>(framework.get())) {
            if (!on) async->handle_menu_option(4);
        }
        return framework;
    }
    bool halves() const { return dynamic_cast<qmp::HalvingParallelizer*>(make().get()) != nullptr; }
};

inline std::vector<FrameworkVariant> framework_variants() {
    std::vector<FrameworkVariant> variants;
    for (const std::string& key : qmp::parallelizer_keys()) variants.push_back({key, key});
    variants.insert(variants.end(), {{"cppasync_or_deferred", "cppasync", 0, false},
                                     {"pushpool_in_order", "pushpool", 0, false},
                                     {"pushpool_limit_1", "pushpool", 1},
                                     {"pushpool_limit_2", "pushpool", 2},
                                     {"pushpool_limit_7_in_order", "pushpool", 7, false}});
    if (qmp::os::system_thread_pool() == nullptr) variants.push_back({"winpool_over_a_fake", "fake"});
    return variants;
}

inline std::string framework_variant_name(const testing::TestParamInfo<FrameworkVariant>& info) {
    return info.param.name;
}

// Counts the runs of each task.
class CountingAction : public qmp::BasicAction {
  public:
    explicit CountingAction(std::uint64_t size) : runs_(size) {}
    void run(std::uint64_t index) override { runs_.at(index).fetch_add(1, std::memory_order_relaxed); }
    bool exactly_once(std::uint64_t start, std::uint64_t end) const {
        for (std::uint64_t i = 0; i < runs_.size(); ++i) {
            if (runs_[i] != (i >= start && i < end ? 1 : 0)) return false;
        }
        return true;
    }

  private:
    std::vector<std::atomic<int>> runs_;
};

}  // namespace kelvara_test
