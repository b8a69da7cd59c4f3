// The arguments of the process on their way through the parsers.
//
// Every parser, whichever component it belongs to, consumes from the same object: what one has consumed
// the next no longer sees.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace qmp::CommandLine {

// A parser needs an argument and none remains: "Expected more parameters.".
class CommandLineException : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace qmp::CommandLine

namespace kelvara {

class CommandLine {
  public:
    // An argument split at its first ':'; without one, the whole text is the key and the value is empty.
    using Pair = std::pair<std::string, std::string>;

    // Every argument as UTF-8, the program path first.
    explicit CommandLine(std::vector<std::string> arguments);

    std::uint64_t size() const { return arguments_.size(); }
    // The position of the next argument to consume; starts behind the program path.
    std::uint64_t index() const { return index_; }
    bool has_more() const { return index_ < size(); }

    // Any argument by its position, which is below size().
    const std::string& argument(std::uint64_t position) const { return arguments_[position]; }
    const Pair& pair(std::uint64_t position) const { return pairs_[position]; }

    // The next argument, whole, split, or its key alone. It stays. Without one they throw
    // CommandLineException.
    const std::string& current() const;
    const Pair& current_pair() const;
    const std::string& current_key() const;

    // The next argument, consumed. Without one they throw CommandLineException.
    const std::string& take_argument();
    const Pair& take_pair();

  private:
    void require_more() const;

    std::vector<std::string> arguments_;
    std::vector<Pair> pairs_;
    std::uint64_t index_ = 1;
};

}  // namespace kelvara
