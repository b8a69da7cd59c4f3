#include "support/arguments.h"

#include <algorithm>
#include <stdexcept>

#include "multiply/instruction_levels.h"

namespace bench {

Argument::Argument(std::string_view text) {
    const std::size_t equals = text.find('=');
    name = text.substr(0, equals);
    if (equals != std::string_view::npos) value = text.substr(equals + 1);
}

std::vector<std::string> items(std::string_view list) {
    std::vector<std::string> result;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(','), list.size());
        result.emplace_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return result;
}

std::vector<std::uint64_t> numbers(std::string_view list) {
    std::vector<std::uint64_t> result;
    for (const std::string& item : items(list)) {
        std::size_t used = 0;
        const double value = std::stod(item, &used);
        if (used != item.size() || !(value >= 1) || value > 1e12) {
            throw std::invalid_argument("Not a positive number: " + item);
        }
        result.push_back(static_cast<std::uint64_t>(value));
    }
    return result;
}

std::vector<std::string> chosen(const std::vector<std::string>& wanted, const std::vector<std::string>& known,
                                const char* what) {
    for (const std::string& item : wanted) {
        if (std::find(known.begin(), known.end(), item) != known.end()) continue;
        std::string message = std::string("No such ") + what + " here: " + item + ". There are";
        for (const std::string& name : known) message += " " + name;
        throw std::invalid_argument(message);
    }
    std::vector<std::string> result;
    for (const std::string& name : known) {
        if (std::find(wanted.begin(), wanted.end(), name) != wanted.end()) result.push_back(name);
    }
    return result;
}

std::vector<std::string> supported_levels() {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < qmp::instruction_level_count; ++i) {
        const auto level = static_cast<qmp::InstructionLevel>(i);
        if (qmp::supported(level)) names.emplace_back(qmp::name_of(level));
    }
    return names;
}

}  // namespace bench
