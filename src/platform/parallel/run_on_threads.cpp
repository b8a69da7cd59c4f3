#include "platform/parallel/run_on_threads.h"

#include <vector>

namespace qmp {
namespace {

thread_local std::uint32_t value_of_this_thread = 0;

}  // namespace

void run_on_threads(BasicAction& action, std::uint64_t start, std::uint64_t end, std::uint32_t value,
                    const StartThread& start_thread) {
    if (end <= start) return;
    std::vector<JoiningThread> threads;
    threads.reserve(end - start);
    for (std::uint64_t i = start; i < end; ++i) {
        threads.emplace_back(start_thread([&action, i, value] {
            value_of_this_thread = value;
            action.run(i);
        }));
    }
}

std::uint32_t thread_value() {
    return value_of_this_thread;
}

}  // namespace qmp
