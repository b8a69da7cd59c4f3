#include "config/command_line.h"

namespace kelvara {

CommandLine::CommandLine(std::vector<std::string> arguments) : arguments_(std::move(arguments)) {
    pairs_.reserve(arguments_.size());
    for (const std::string& argument : arguments_) {
        const std::size_t colon = argument.find(':');
        if (colon == std::string::npos) {
            pairs_.emplace_back(argument, std::string());
        } else {
            pairs_.emplace_back(argument.substr(0, colon), argument.substr(colon + 1));
        }
    }
}

void CommandLine::require_more() const {
    if (!has_more()) throw qmp::CommandLine::CommandLineException("Expected more parameters.");
}

const std::string& CommandLine::current() const {
    require_more();
    return arguments_[index_];
}

const CommandLine::Pair& CommandLine::current_pair() const {
    require_more();
    return pairs_[index_];
}

const std::string& CommandLine::current_key() const {
    return current_pair().first;
}

const std::string& CommandLine::take_argument() {
    require_more();
    return arguments_[index_++];
}

const CommandLine::Pair& CommandLine::take_pair() {
    require_more();
    return pairs_[index_++];
}

}  // namespace kelvara
