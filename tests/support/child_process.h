// Programs run as children, in the surroundings that a test chooses.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelvara_test {

// What stands behind a stream of the child.
enum class ChildStream {
    usual,       // no input; output is collected
    closed,      // the child is started without the stream
    broken_pipe  // an output whose reader has gone
};

struct ChildSettings {
    // Where the child starts, UTF-8; the test's own folder when empty.
    std::string folder;
    ChildStream input = ChildStream::usual;
    ChildStream output = ChildStream::usual;
};

struct ChildEnd {
    // On Linux, minus the signal that ended the child. Minus 1000 when it had to be ended.
    std::int64_t exit_code = 0;
    // Standard output and error, with plain line feeds.
    std::string output;
};

// Runs the command, whose first word is the path of a program, to its end, which comes within a minute.
ChildEnd run_child(const std::vector<std::string>& command, const ChildSettings& settings = {});

}  // namespace kelvara_test
