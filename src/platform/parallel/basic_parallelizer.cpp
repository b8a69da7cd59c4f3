#include "platform/parallel/basic_parallelizer.h"

#include "console/console.h"
#include "platform/parallel/range_split_action.h"

namespace qmp {
namespace {

std::string counts(std::uint64_t tasks, std::uint64_t threads) {
    return std::to_string(tasks) + " / " + (threads == 0 ? std::string("?") : std::to_string(threads));
}

}  // namespace

void BasicParallelizer::run_in_parallel(BasicAction& action, std::uint64_t start, std::uint64_t end) {
    if (end <= start) return;
    if (end - start == 1) {
        action.run(start);
        return;
    }
    const std::uint64_t middle = start + (end - start) / 2;
    RangeSplitAction lower(*this, action, start, middle);
    RangeSplitAction upper(*this, action, middle, end);
    run_in_parallel(lower, upper);
}

std::string BasicParallelizer::to_string(std::uint64_t tasks) const {
    return std::string(get_display_name()) + "  ->  " + counts(tasks, threads) + summary_remark();
}

void BasicParallelizer::print_summary(std::uint64_t tasks) const {
    console::write(get_display_name(), 'T');
    console::reset_color();
    console::write("  ->  ");
    console::write(counts(tasks, threads), 'Y');
    console::reset_color();
    console::println(summary_remark());
}

}  // namespace qmp
