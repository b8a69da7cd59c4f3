// Redirects the process's own standard streams, at the level of the system, while an object lives.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kelvara_test {

// Standard output goes to a file.
class CapturedOutput {
  public:
    CapturedOutput();
    ~CapturedOutput();
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    // What was written since the start; puts the stream back.
    std::string finish();

  private:
    void restore();
    std::intptr_t saved_ = -1;
    std::intptr_t file_ = -1;
    std::string path_;
};

// Standard input comes from a file with this content. The test reads all of it: what is left over stays in
// the reader's buffer.
class FedInput {
  public:
    explicit FedInput(std::string_view content);
    ~FedInput();
    FedInput(const FedInput&) = delete;
    FedInput& operator=(const FedInput&) = delete;

  private:
    std::intptr_t saved_ = -1;
    std::string path_;
};

}  // namespace kelvara_test
