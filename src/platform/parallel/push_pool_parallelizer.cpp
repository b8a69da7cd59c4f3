#include "platform/parallel/push_pool_parallelizer.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "config/settings_record.h"
#include "config/text_cursor.h"
#include "console/console.h"
#include "console/input.h"
#include "platform/menu_layout.h"
#include "platform/os/threads.h"
#include "platform/parallel/settings.h"
#include "platform/parallel/spare_processor.h"
#include "platform/thread_group.h"

namespace qmp {

PushPoolParallelizer::PushPoolParallelizer()
    : creator_group_(os::thread_group_affinity().value_or(os::GroupAffinity{}).group),
      pool_(new_pool(true)) {}

std::unique_ptr<PushPool> PushPoolParallelizer::new_pool(bool randomize_searches) const {
    // The workers go round the processor groups, the first to the group after the creator's.
    const std::uint64_t creator_group = creator_group_;
    return std::make_unique<PushPool>(randomize_searches, [creator_group](std::uint64_t number) {
        set_thread_group(creator_group + number + 1);
    });
}

void PushPoolParallelizer::hand_over(TaskLatch& latch, std::uint64_t index) {
    const bool accepted = threads != 0 ? pool_->try_push(latch, index) : pool_->push(latch, index);
    if (accepted) return;
    latch.run(index);
    SpareProcessor::end_work();  // nobody waits for it
}

void PushPoolParallelizer::run_in_parallel(BasicAction& action, std::uint64_t start, std::uint64_t end) {
    if (end <= start) return;
    if (end - start > largest_flat_range) {
        BasicParallelizer::run_in_parallel(action, start, end);
        return;
    }
    // The full limit, one more than warm_up starts.
    if (threads != 0) pool_->ensure_workers(threads);
    std::optional<TaskLatch> latches[largest_flat_range];
    std::uint64_t built = 0;
    for (std::uint64_t i = start + 1; i < end; ++i) hand_over(latches[built++].emplace(action), i);
    action.run(start);
    while (built > 0) latches[--built]->wait();
}

void PushPoolParallelizer::run_in_parallel(BasicAction& a, BasicAction& b) {
    TaskLatch latch(b);
    hand_over(latch, 0);
    a.run(0);
    latch.wait();
}

std::uint64_t PushPoolParallelizer::idle_processors() const {
    return SpareProcessor::count();
}

void PushPoolParallelizer::warm_up() {
    const std::uint64_t processors = std::max<std::uint64_t>(os::active_processors(), 1);
    pool_->ensure_workers((threads != 0 ? threads : 2 * processors) - 1);
}

void PushPoolParallelizer::reset() {
    std::unique_ptr<PushPool> old = std::exchange(pool_, new_pool(randomize()));
}

std::uint64_t PushPoolParallelizer::print_menu_options() const {
    const std::string limit = threads == 0 ? std::string("Unlimited") : std::to_string(threads);
    menu::print_option("   4    Worker Threads:", limit, 'Y');
    menu::print_option("   5    Thread Randomization:", randomize() ? "Enabled" : "Disabled",
                       randomize() ? 'G' : 'R');
    console::newline();
    return 5;
}

void PushPoolParallelizer::handle_menu_option(std::uint64_t option) {
    if (option == 4) {
        const std::int64_t limit = console::read_int_in_range("Threads (0 for unlimited threads): ", 0,
                                                              std::numeric_limits<std::int64_t>::max(), 'Y');
        set_thread_limit(limit);
    } else if (option == 5) {
        set_randomize(!randomize());
    }
}

std::string PushPoolParallelizer::summary_remark() const {
    return randomize() ? "  (randomization on)" : "  (randomization off)";
}

std::string PushPoolParallelizer::print_settings() const {
    return SettingsRecordWriter()
        .write_integer("    worker threads:", static_cast<std::int64_t>(threads))
        .write_bool("    randomization :", randomize())
        .take();
}

void PushPoolParallelizer::load_settings(TextCursor& cursor) {
    set_thread_limit(cursor.read_integer());
    set_randomize(cursor.read_integer() != 0);
}

notation::Object PushPoolParallelizer::write_config() const {
    notation::Object config;
    config.insert_integer("WorkerThreads", static_cast<std::int64_t>(threads));
    config.insert_bool("Randomization", randomize());
    return config;
}

void PushPoolParallelizer::read_config(const notation::Object& config) {
    set_thread_limit(config.get_integer("WorkerThreads", parallel_context_name));
    set_randomize(read_parallel_flag(config, "Randomization"));
}

void PushPoolParallelizer::set_thread_limit(std::int64_t limit) {
    threads = static_cast<std::uint64_t>(
        std::clamp<std::int64_t>(limit, 0, static_cast<std::int64_t>(largest_thread_limit)));
}

}  // namespace qmp
