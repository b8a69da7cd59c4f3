#include "constants/bbp/sum_status.h"

#include "console/format.h"

namespace kelvara::bbp {
namespace {

constexpr double seconds_between_labels = 0.2;
constexpr double seconds_between_lines = 600;

std::string percentage(std::uint64_t done, std::uint64_t whole) {
    return qmp::console::format_fixed(100 * static_cast<double>(done) / static_cast<double>(whole), 3) + "%";
}

}  // namespace

SumStatus::SumStatus(qmp::Progress& progress, std::uint64_t series, std::uint64_t of_series,
                     bool lines_can_be_rewritten, qmp::ClockSystem& clocks)
    : progress_(progress),
      clocks_(clocks),
      series_(std::to_string(series) + " / " + std::to_string(of_series) + " -> "),
      rewrites_(lines_can_be_rewritten),
      shown_(qmp::now(clocks)) {}

SumStatus::~SumStatus() {
    if (label_) progress_.pop_label();
}

void SumStatus::show(std::uint64_t blocks_done, std::uint64_t blocks) {
    const qmp::CounterTimePoint present = qmp::now(clocks_);
    const double interval = rewrites_ ? seconds_between_labels : seconds_between_lines;
    if (qmp::seconds_between(present, shown_, clocks_) < interval) return;
    shown_ = present;
    const std::string text = series_ + percentage(blocks_done, blocks);
    if (!rewrites_) return progress_.message(text, 'T');
    if (label_) progress_.pop_label();
    progress_.push_label(text, 'T');
    label_ = true;
}

}  // namespace kelvara::bbp
