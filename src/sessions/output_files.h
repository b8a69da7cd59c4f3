// The digit files of a session.
//
// When a file cannot be written to its end, that is told at once, the rest of its digits are dropped, and
// the computation goes on to its verification and report. rethrow_failure() throws the first failure
// afterwards.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "console/progress.h"
#include "errors/exception.h"
#include "radix/output_driver.h"
#include "sessions/session_record.h"

namespace kelvara {

class OutputFiles {
  public:
    OutputFiles(std::string folder, std::string constant_name, std::string algorithm_name,
                qmp::Progress& progress)
        : folder_(std::move(folder)),
          constant_name_(std::move(constant_name)),
          algorithm_name_(std::move(algorithm_name)),
          progress_(progress) {}

    // Opens the digit file of a radix (10 or 16) when the output driver asks for it.
    qmp::OpenSink opener(int radix);

    const std::vector<WrittenFile>& files() const { return files_; }
    void rethrow_failure() const {
        if (failure_) failure_->throw_this();
    }

  private:
    class Sink;
    void note_failure(std::size_t file, const qmp::Exception& exception);

    std::string folder_;
    std::string constant_name_;
    std::string algorithm_name_;
    qmp::Progress& progress_;
    std::vector<WrittenFile> files_;
    std::unique_ptr<qmp::Exception> failure_;
};

}  // namespace kelvara
