#include "platform/parallel/registry.h"

#include <algorithm>
#include <utility>

#include "console/format.h"
#include "errors/exception.h"
#include "platform/os/thread_pool.h"
#include "platform/os/threads.h"
#include "platform/parallel/async_parallelizer.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/parallel/serial_parallelizer.h"
#include "platform/parallel/spawn_parallelizer.h"
#include "platform/parallel/windows_pool_parallelizer.h"

namespace qmp {
namespace {

using Registry = ComponentRegistry<BasicParallelizer>;

Registry& registry() {
    // Filled on first use; the lines stand in menu order.
    static Registry instance = [] {
        Registry frameworks(
            {"Duplicate Framework Type", "make_parallelizer()", "Invalid Parallel Framework: "});
        frameworks.add<SerialParallelizer>();
        frameworks.add<AsyncParallelizer>();
        frameworks.add<SpawnParallelizer>();
        frameworks.add<PushPoolParallelizer>();
        if (os::system_thread_pool() != nullptr) frameworks.add<WindowsPoolParallelizer>();
        return frameworks;
    }();
    return instance;
}

}  // namespace

void register_parallelizer(std::string key, std::unique_ptr<ParallelizerFactory> factory) {
    registry().add(std::move(key), std::move(factory));
}

std::unique_ptr<BasicParallelizer> make_parallelizer(std::string_view key) {
    return registry().create(key);
}

std::unique_ptr<BasicParallelizer> make_default_parallelizer() {
    return std::make_unique<PushPoolParallelizer>();
}

std::vector<std::string> parallelizer_display_names() {
    return registry().display_names();
}

const std::vector<std::string>& parallelizer_keys() {
    return registry().keys();
}

std::unique_ptr<BasicParallelizer> make_parallelizer_by_number(std::uint64_t menu_number) {
    return registry().create(menu_number);
}

std::uint64_t checked_task_decomposition(std::uint64_t tasks) {
    if (tasks < 1 || tasks > largest_task_decomposition) {
        throw InvalidParametersException("checked_task_decomposition()",
                                         "Task decomposition must be between 1 and " +
                                             console::format_separated(largest_task_decomposition) + ".");
    }
    return tasks;
}

std::uint64_t default_task_decomposition() {
    return std::clamp<std::uint64_t>(os::active_processors(), 1, largest_task_decomposition);
}

}  // namespace qmp
