// The shape that the option parsers of all actions share.
#pragma once

#include <map>
#include <string>

#include "config/command_line.h"
#include "console/console.h"

namespace kelvara {

// Consumes the current argument, and those that belong to it.
template <typename Settings>
using OptionHandler = void (*)(Settings& settings, CommandLine& command_line);

// By the key of the argument, exactly.
template <typename Settings>
using OptionTable = std::map<std::string, OptionHandler<Settings>>;

// An option that no table knows ends the program.
template <typename Settings>
void refuse_option(Settings&, CommandLine& command_line) {
    qmp::console::fatal_error("Invalid Parameter: " + command_line.current_key());
}

// Hands every remaining argument to its handler; `otherwise` gets those that the table does not know.
template <typename Settings>
void parse_options(const OptionTable<Settings>& table, Settings& settings, CommandLine& command_line,
                   OptionHandler<Settings> otherwise = refuse_option<Settings>) {
    while (command_line.has_more()) {
        const auto option = table.find(command_line.current_key());
        const OptionHandler<Settings> handler = option == table.end() ? otherwise : option->second;
        handler(settings, command_line);
    }
}

// The value part of the current argument, which is consumed.
inline std::string take_value(CommandLine& command_line) {
    return command_line.take_pair().second;
}

}  // namespace kelvara
