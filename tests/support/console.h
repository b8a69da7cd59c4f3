// What the program prints, and what the user types, in tests of single functions.
#pragma once

#include <string>

namespace kelvara_test {

// Standard output becomes what the enclosed code prints, with plain line feeds.
class CapturedOutput {
  public:
    CapturedOutput();
    ~CapturedOutput();
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;
    std::string text();

  private:
    bool taken_ = false;
};

template <typename Function>
std::string printed_by(Function&& function) {
    CapturedOutput output;
    function();
    return output.text();
}

// From now on standard input holds these lines, and then its end.
void type_lines(const std::string& lines);

}  // namespace kelvara_test
