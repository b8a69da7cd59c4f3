#include "support/arguments.h"

#include <algorithm>
#include <stdexcept>

#include "multiply/instruction_levels.h"

namespace bench {

namespace {

double number_in(const std::string& text, double least, double most) {
    std::size_t used = 0;
    double value = 0;
    try {
        value = std::stod(text, &used);
    } catch (const std::exception&) {
        used = 0;  // refused below
    }
    if (used == 0 || used != text.size() || !(value >= least) || value > most) {
        throw std::invalid_argument("Not a positive number: " + text);
    }
    return value;
}

}  // namespace

void read_arguments(int argc, char** argv, const Flags& flags, const ValueOptions& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view text = argv[i];
        const std::size_t equals = std::min(text.find('='), text.size());
        const std::string_view name = text.substr(0, equals);
        const std::string_view value = text.substr(std::min(equals + 1, text.size()));
        if (const auto flag = flags.find(name); value.empty() && flag != flags.end()) {
            flag->second();
        } else if (const auto option = options.find(name); !value.empty() && option != options.end()) {
            option->second(value);
        } else {
            throw std::invalid_argument("Unknown option: " + std::string(text));
        }
    }
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
        result.push_back(static_cast<std::uint64_t>(number_in(item, 1, 1e12)));
    }
    return result;
}

std::uint64_t number(std::string_view text) {
    return static_cast<std::uint64_t>(number_in(std::string(text), 1, 1e12));
}

double seconds(std::string_view text) {
    return number_in(std::string(text), 0, 1e6);
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
