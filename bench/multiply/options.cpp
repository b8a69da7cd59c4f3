#include "options.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string_view>

#include "multiply/instruction_levels.h"

namespace bench {
namespace {

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

std::vector<std::string> supported_levels() {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < qmp::instruction_level_count; ++i) {
        const auto level = static_cast<qmp::InstructionLevel>(i);
        if (qmp::supported(level)) names.emplace_back(qmp::name_of(level));
    }
    return names;
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

}  // namespace

Options parse_options(int argc, char** argv) {
    Options options;
    options.parts = all_parts;
    options.levels = supported_levels();
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const std::size_t equals = argument.find('=');
        const std::string_view name = argument.substr(0, equals);
        const std::string_view value =
            equals == std::string_view::npos ? std::string_view() : argument.substr(equals + 1);
        if (argument == "--help") {
            options.help = true;
        } else if (argument == "--processor-time") {
            options.processor_time = true;
        } else if (value.empty()) {
            throw std::invalid_argument("Unknown option: " + std::string(argument));
        } else if (name == "--parts") {
            options.parts = chosen(items(value), all_parts, "part");
        } else if (name == "--levels") {
            options.levels = chosen(items(value), supported_levels(), "level");
        } else if (name == "--tasks") {
            options.tasks = numbers(value);
        } else if (name == "--sizes") {
            options.sizes = numbers(value);
        } else if (name == "--budget") {
            options.budget = std::stod(std::string(value));
        } else {
            throw std::invalid_argument("Unknown option: " + std::string(argument));
        }
    }
    return options;
}

void print_help() {
    std::printf(
        "multiply_bench: products of the engine beside GMP's, same operands, same run.\n"
        "\n"
        "  --parts=LIST      of products,squares,unbalanced,scratch,steps (all)\n"
        "  --levels=LIST     instruction-set levels, as \"AVX-512,AVX2\" (all that this machine runs)\n"
        "  --tasks=LIST      task counts (1,2)\n"
        "  --sizes=LIST      words of an operand, as 10,5000,1e6 (10 to 1e7)\n"
        "  --budget=SECONDS  for one figure (3); at least three rounds are measured in any case\n"
        "  --processor-time  the process's own time instead of the clock on the wall: for a busy machine,\n"
        "                    with one task only (several tasks' times add up)\n"
        "  --help\n"
        "\n"
        "A quick look: multiply_bench --parts=products --levels=AVX2 --tasks=1 --sizes=10,1000 "
        "--budget=0.2\n");
}

}  // namespace bench
