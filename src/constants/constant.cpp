#include "constants/constant.h"

#include <string>

#include "console/input.h"
#include "console/labels.h"
#include "errors/exception.h"

namespace kelvara {

namespace console = qmp::console;

const AlgorithmInfo* Constant::algorithm_info() const {
    return algorithm_ < info_.algorithms.size() ? &info_.algorithms[algorithm_] : nullptr;
}

std::string Constant::algorithm_name() const {
    const AlgorithmInfo* entry = algorithm_info();
    return entry ? entry->long_name : "";
}

void Constant::set_algorithm_keyword(std::string_view keyword) {
    for (std::uint32_t i = 0; i < info_.algorithms.size(); i++) {
        const bool digit = i < AlgorithmInfo::named_by_digit && keyword == std::to_string(i);
        if (digit || keyword == info_.algorithms[i].keyword) {
            algorithm_ = i;
            return;
        }
    }
    throw qmp::InvalidParametersException("", "Invalid Algorithm: " + std::string(keyword));
}

std::string Constant::menu_label(std::uint32_t index) const {
    return info_.algorithms[index].menu_label;
}

void Constant::print_menu_entry(std::uint32_t index) const {
    console::println("   " + std::to_string(index) + "    " + menu_label(index), 'T');
    const char* line = info_.algorithms[index].menu_line;
    if (line) console::println("        " + std::string(line), 'T');
}

void Constant::ask_algorithm() {
    console::println("Select an Algorithm:", 'w');
    console::newline();
    std::uint32_t offered = 0;
    for (const AlgorithmInfo& entry : info_.algorithms) {
        if (!entry.menu_label) break;
        print_menu_entry(offered++);
    }
    console::newline();
    if (!info_.menu_note.empty()) {
        for (const char* line : info_.menu_note) console::println(line, 'w');
        console::newline();
    }
    algorithm_ = static_cast<std::uint32_t>(console::read_int_in_range("Algorithm: ", 0, offered - 1, 'T'));
}

void Constant::print_settings() const {
    if (const auto value = argument()) {
        console::print_label_line("Argument          ", console::format_int(*value), ' ');
    }
    const AlgorithmInfo* entry = algorithm_info();
    console::print_label_line("Algorithm         ", entry ? entry->keyword : "", ' ');
}

std::unique_ptr<RamComputation> Constant::make_ram_computation(std::uint64_t tasks) const {
    return algorithm_info() ? make_computation(tasks) : nullptr;
}

}  // namespace kelvara
