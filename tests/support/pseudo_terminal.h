// A child process on a pseudo-terminal, driven like a person would: type, look at the screen, wait.
// On Linux only.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvara_test {

class PseudoTerminal {
  public:
    // The child leads the terminal's session, as a program does for which a window was opened.
    explicit PseudoTerminal(const std::vector<std::string>& command, int columns = 80, int rows = 24);
    // Runs a function in a copy of this process; its result is the exit code.
    explicit PseudoTerminal(const std::function<int()>& child, int columns = 80, int rows = 24);
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    void type(std::string_view keys);
    // Reads until the text appears behind everything that was waited for before; false when it does not
    // within some seconds, or when the child ends first.
    bool wait_for(std::string_view text);
    // Reads to the child's end. Its exit code, or minus the signal that ended it.
    int wait_for_end();
    // The terminal goes away, as when its window is closed.
    void hang_up();

    // Every byte that the child wrote so far.
    const std::string& output() const { return output_; }

  private:
    bool read_some(int timeout_milliseconds);
    int master_ = -1;
    int child_ = -1;
    std::string output_;
    std::size_t searched_ = 0;
};

// What a terminal shows of these bytes, line by line, trailing blanks removed: carriage returns and
// backspaces applied, colours and other sequences left out.
std::vector<std::string> shown_lines(std::string_view output);

}  // namespace kelvara_test
