#include "step_times.h"

#include <algorithm>

namespace bench {
namespace {

bool names_a_block(const std::string& label) {
    return label.starts_with("Series: ");
}

// "Squaring...    " -> "Squaring", "25,000,000  digits written" -> "digits written".
std::string plain(std::string_view label) {
    const std::size_t first = label.find_first_not_of("0123456789, ");
    if (first == std::string_view::npos) return "";
    const std::size_t last = label.find_last_not_of(" .:");
    return std::string(label.substr(first, last + 1 - first));
}

}  // namespace

void StepTimes::begin_step(std::string_view, std::string_view status) {
    steps_.push_back({std::string(status), 0, {}});
    labels_.clear();
    last_popped_.clear();
    begun_ = counted_ = qmp::now();
}

void StepTimes::end_step() {
    count();
    steps_.back().seconds = qmp::seconds_between(counted_, begun_);
}

void StepTimes::push_label(std::string_view text, qmp::console::Colour) {
    count();
    labels_.emplace_back(text);
    if (names_a_block(labels_.back())) last_popped_.clear();
}

void StepTimes::pop_label() {
    count();
    if (labels_.size() == 1 || (labels_.size() == 2 && names_a_block(labels_[0]))) {
        last_popped_ = labels_.back();
    }
    labels_.pop_back();
}

void StepTimes::count() {
    const qmp::CounterTimePoint now = qmp::now();
    std::vector<Part>& parts = steps_.back().parts;
    const std::string name = part();
    auto found = std::find_if(parts.begin(), parts.end(), [&](const Part& p) { return p.name == name; });
    if (found == parts.end()) found = parts.insert(parts.end(), {name, 0});
    found->seconds += qmp::seconds_between(now, counted_);
    counted_ = now;
}

std::string StepTimes::part() const {
    if (steps_.back().name.starts_with("Summing Series")) return series_part();
    return labels_.empty() ? "preparing" : plain(labels_.front());
}

// A block is summed below " -> ", or in halves "0" and "1" that "-  " merges; then its check values are
// compared, and "-  " folds it.
std::string StepTimes::series_part() const {
    if (labels_.empty()) return "planning, memory";
    const std::size_t level = names_a_block(labels_[0]) ? 1 : 0;
    if (labels_.size() == level) return "modular check, copies";
    const std::string& label = labels_[level];
    if (label == "0" || label == "1" || label == " -> ") return "blocks below the last merge";
    if (label == "-  ") return last_popped_ == "1" ? "last merges of blocks" : folds;
    return plain(label);
}

double StepTimes::seconds(std::string_view step) const {
    double all = 0;
    for (const Step& s : steps_) {
        if (s.name == step) all += s.seconds;
    }
    return all;
}

double StepTimes::seconds(std::string_view step, std::string_view part_name) const {
    double all = 0;
    for (const Step& s : steps_) {
        if (s.name != step) continue;
        for (const Part& p : s.parts) {
            if (p.name == part_name) all += p.seconds;
        }
    }
    return all;
}

}  // namespace bench
