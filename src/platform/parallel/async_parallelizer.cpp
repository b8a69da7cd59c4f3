#include "platform/parallel/async_parallelizer.h"

#include "config/settings_record.h"
#include "config/text_cursor.h"
#include "console/console.h"
#include "platform/menu_layout.h"
#include "platform/os/thread_start.h"
#include "platform/parallel/settings.h"
#include "platform/parallel/spare_processor.h"

namespace qmp {

void AsyncParallelizer::run_in_parallel(BasicAction& a, BasicAction& b) {
    // Outlives the future, whose destructor waits for the call.
    Pair pair(*this);
    std::future<void> future = std::async(launch_policy_, [&a, &pair] {
        os::prepare_thread_for_crashes();
        a.run(0);
        pair.end_task();
    });
    b.run(0);
    const ThreadAtRest at_rest;
    future.get();
}

std::uint64_t AsyncParallelizer::print_menu_options() const {
    menu::print_option("   4    Launch Policy:",
                       async_only_ ? "std::launch::async" : "std::launch::async | std::launch::deferred",
                       'G');
    console::newline();
    return 4;
}

void AsyncParallelizer::handle_menu_option(std::uint64_t option) {
    if (option != 4) return;
    async_only_ = !async_only_;
    launch_policy_ = async_only_ ? std::launch::async : std::launch::async | std::launch::deferred;
}

std::string AsyncParallelizer::summary_remark() const {
    return async_only_ ? "  (async only)" : "  (async | deferred)";
}

std::string AsyncParallelizer::print_settings() const {
    return SettingsRecordWriter().write_bool("    async_only    :", async_only_).take();
}

void AsyncParallelizer::load_settings(TextCursor& cursor) {
    async_only_ = cursor.read_integer() != 0;
}

notation::Object AsyncParallelizer::write_config() const {
    notation::Object config;
    config.insert_bool("AsyncOnly", async_only_);
    return config;
}

void AsyncParallelizer::read_config(const notation::Object& config) {
    async_only_ = read_parallel_flag(config, "AsyncOnly");
}

}  // namespace qmp
