#include "sessions/output_files.h"

#include "digitfiles/digit_file_name.h"
#include "digitfiles/text_writer.h"
#include "errors/file_exception.h"

namespace kelvara {

// A text digit file that gives up once instead of throwing.
class OutputFiles::Sink final : public qmp::DigitSink {
  public:
    Sink(OutputFiles& owner, std::size_t file, const std::string& first_digits, int radix)
        : owner_(owner), file_(file) {
        guarded([&] {
            writer_ = std::make_unique<qmp::TextWriter>(owner_.files_[file_].path, first_digits, true,
                                                        static_cast<std::uint32_t>(radix));
        });
    }
    void write(char* digits, std::uint64_t count) override {
        guarded([&] {
            if (writer_) writer_->write(digits, count);
        });
    }
    void finish() override {
        guarded([&] {
            if (writer_) writer_->finish();
        });
    }

  private:
    template <typename Operation>
    void guarded(Operation&& operation) {
        try {
            operation();
        } catch (const qmp::FileIO::FileException& exception) {
            owner_.note_failure(file_, exception);
            writer_.reset();
        }
    }

    OutputFiles& owner_;
    std::size_t file_;
    std::unique_ptr<qmp::TextWriter> writer_;
};

qmp::OpenSink OutputFiles::opener(int radix) {
    return [this, radix](const std::string& first_digits) -> std::unique_ptr<qmp::DigitSink> {
        files_.push_back({qmp::digit_file_name(folder_, constant_name_, radix, algorithm_name_)});
        return std::make_unique<Sink>(*this, files_.size() - 1, first_digits, radix);
    };
}

void OutputFiles::note_failure(std::size_t file, const qmp::Exception& exception) {
    files_[file].complete = false;
    if (!failure_) failure_ = exception.clone();
    progress_.message("The digits cannot be written to the file; the computation goes on without it.", 'R');
}

}  // namespace kelvara
