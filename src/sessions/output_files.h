// The digit files of a session: a text file of each radix, or compressed files.
//
// When a file cannot be written to its end, that is told at once, the rest of its digits are dropped, and
// the computation goes on to its verification and report. rethrow_failure() throws the first failure
// afterwards.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "console/progress.h"
#include "digitfiles/digit_writer.h"
#include "errors/exception.h"
#include "radix/output_driver.h"
#include "sessions/computation_settings.h"
#include "sessions/session_record.h"

namespace kelvara {

class OutputFiles {
  public:
    OutputFiles(const ComputationSettings& settings, std::string algorithm_name, qmp::Progress& progress)
        : settings_(settings), algorithm_name_(std::move(algorithm_name)), progress_(progress) {}

    // Opens the digit files of a radix (10 or 16) when the output driver asks for them.
    qmp::OpenSink opener(std::uint32_t radix);

    const std::vector<WrittenFile>& files() const { return files_; }
    void rethrow_failure() const {
        if (failure_) failure_->throw_this();
    }

  private:
    class Sink;
    std::unique_ptr<qmp::DigitWriter> open(std::uint32_t radix, const std::string& first_digits) const;
    void note_failure(std::size_t file, const qmp::Exception& exception);

    const ComputationSettings& settings_;
    std::string algorithm_name_;
    qmp::Progress& progress_;
    std::vector<WrittenFile> files_;
    std::unique_ptr<qmp::Exception> failure_;
};

// What can be known before anything is computed: FileException when something else stands where a file or a
// folder of digits is to be. Makes the folders.
void check_output_files(const ComputationSettings& settings, const std::string& algorithm_name);

// Upper bound of what the digit files take on the disk.
std::uint64_t output_bytes(const ComputationSettings& settings);

}  // namespace kelvara
