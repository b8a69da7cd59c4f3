#include "stress/stress_threads.h"

#include <string>
#include <system_error>

#include "console/console.h"
#include "errors/system_exception.h"
#include "platform/parallel/basic_action.h"
#include "platform/parallel/run_on_threads.h"

namespace kelvara {

void StressThreads::run(std::uint64_t count, const std::function<void(std::uint64_t)>& body,
                        const std::function<void()>& abandon) {
    auto bound_body = [&](std::uint64_t thread) {
        if (local_) bind(thread);
        body(thread);
    };
    qmp::FunctionAction action(bound_body);
    const qmp::StartThread start = [&](std::function<void()> work) {
        try {
            return machine_.start_thread(std::move(work));
        } catch (const std::system_error&) {
            abandon();
            throw;
        }
    };
    try {
        qmp::run_on_threads(action, 0, count, 0, start);
    } catch (const std::system_error& error) {
        throw qmp::SystemException("StressThreads::run()", "Unable to start so many threads.",
                                   static_cast<std::uint32_t>(error.code().value()));
    }
}

void StressThreads::bind(std::uint64_t thread) {
    const std::uint64_t core = machine_.cores == 0 ? 0 : thread % machine_.cores;
    if (machine_.bind_to_core(core)) return;
    const std::lock_guard lock(mutex_);
    if (refused_.size() <= core) refused_.resize(core + 1);
    if (refused_[core]) return;
    refused_[core] = true;
    qmp::console::print_warning("Failed to set core affinity to core: " + std::to_string(core));
}

}  // namespace kelvara
