#include "platform/parallel/registry.h"

#include <algorithm>
#include <map>
#include <utility>

#include "console/console.h"
#include "console/format.h"
#include "errors/exception.h"
#include "platform/os/threads.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/parallel/serial_parallelizer.h"

namespace qmp {
namespace {

template <typename Framework>
class FactoryOf final : public ParallelizerFactory {
 public:
    const char* get_display_name() const override { return Framework::display_name; }
    std::unique_ptr<BasicParallelizer> create() const override { return std::make_unique<Framework>(); }
};

class Registry {
 public:
    // The lines stand in menu order.
    Registry() {
        add<SerialParallelizer>();
        add<PushPoolParallelizer>();
    }

    void add(std::string key, std::unique_ptr<ParallelizerFactory> factory) {
        const auto [entry, inserted] = by_key_.emplace(std::move(key), std::move(factory));
        if (!inserted) {
            console::print_warning("Duplicate Framework Type");
            console::terminate(1);
        }
        in_menu_order_.push_back(entry->second.get());
    }

    const ParallelizerFactory* find(std::string_view key) const {
        const auto found = by_key_.find(key);
        return found == by_key_.end() ? nullptr : found->second.get();
    }
    const std::vector<const ParallelizerFactory*>& in_menu_order() const { return in_menu_order_; }

 private:
    template <typename Framework>
    void add() {
        add(Framework::type_name, std::make_unique<FactoryOf<Framework>>());
    }

    std::map<std::string, std::unique_ptr<ParallelizerFactory>, std::less<>> by_key_;
    std::vector<const ParallelizerFactory*> in_menu_order_;
};

Registry& registry() {
    static Registry instance;
    return instance;
}

}  // namespace

void register_parallelizer(std::string key, std::unique_ptr<ParallelizerFactory> factory) {
    registry().add(std::move(key), std::move(factory));
}

std::unique_ptr<BasicParallelizer> make_parallelizer(std::string_view key) {
    const ParallelizerFactory* factory = registry().find(key);
    if (!factory) {
        throw InvalidParametersException("make_parallelizer()", "Invalid Parallel Framework: " + std::string(key));
    }
    return factory->create();
}

std::unique_ptr<BasicParallelizer> make_default_parallelizer() { return std::make_unique<PushPoolParallelizer>(); }

std::vector<std::string> parallelizer_display_names() {
    std::vector<std::string> names;
    for (const ParallelizerFactory* factory : registry().in_menu_order()) names.push_back(factory->get_display_name());
    return names;
}

std::unique_ptr<BasicParallelizer> make_parallelizer_by_number(std::uint64_t menu_number) {
    return registry().in_menu_order().at(menu_number)->create();
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
