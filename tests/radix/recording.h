// What a driver did, in the order in which it did it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "console/progress.h"
#include "radix/digit_sink.h"
#include "radix/output_driver.h"

namespace kelvara_test {

// Lines of "step", "label", "message" and "done", and whatever a sink adds.
class RecordingProgress final : public qmp::Progress {
  public:
    void begin_step(std::string_view title, std::string_view status) override {
        add("step " + std::string(title) + "|" + std::string(status));
    }
    void note(std::string_view text, qmp::console::Colour) override { add("note " + std::string(text)); }
    void push_label(std::string_view text, qmp::console::Colour) override {
        add("label " + std::string(text));
        ++depth;
    }
    void pop_label() override { --depth; }
    void end_step() override { add("done"); }
    void message(std::string_view text, qmp::console::Colour) override {
        add("message " + std::string(text));
    }
    void add(std::string line) { lines.push_back(std::move(line)); }
    // The messages, without the word.
    std::vector<std::string> messages() const {
        std::vector<std::string> found;
        for (const auto& line : lines) {
            if (line.rfind("message ", 0) == 0) found.push_back(line.substr(8));
        }
        return found;
    }

    std::vector<std::string> lines;
    int depth = 0;
};

// Collects digits as characters behind the first digits, and spoils every block that it was given.
class RecordingSink final : public qmp::DigitSink {
  public:
    RecordingSink(std::string& text, RecordingProgress* progress, const std::string& first_digits)
        : text_(text), progress_(progress) {
        text_ = first_digits;
        if (progress_) progress_->add("opened " + first_digits);
    }
    ~RecordingSink() override {
        if (progress_) progress_->add("destroyed");
    }
    void write(char* digits, std::uint64_t count) override {
        for (std::uint64_t i = 0; i < count; ++i) {
            text_ += "0123456789abcdef"[digits[i] & 15];
            digits[i] = '?';
        }
        blocks.push_back(count);
    }
    void finish() override {
        if (progress_) progress_->add("finished");
    }
    std::vector<std::uint64_t> blocks;

  private:
    std::string& text_;
    RecordingProgress* progress_;
};

inline qmp::OpenSink recording_sink(std::string& text, RecordingProgress* progress = nullptr) {
    return [&text, progress](const std::string& first_digits) {
        return std::make_unique<RecordingSink>(text, progress, first_digits);
    };
}

}  // namespace kelvara_test
