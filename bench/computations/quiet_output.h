// What the process writes to its standard output goes nowhere while an object lives.
#pragma once

namespace bench {

class QuietOutput {
  public:
    QuietOutput();
    ~QuietOutput();
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

  private:
    int saved_;
};

}  // namespace bench
