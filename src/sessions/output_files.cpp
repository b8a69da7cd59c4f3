#include "sessions/output_files.h"

#include "digitfiles/digit_file_name.h"
#include "digitfiles/qcd_writer.h"
#include "digitfiles/text_writer.h"
#include "errors/file_exception.h"
#include "platform/os/file.h"
#include "radix/digit_codecs.h"

namespace kelvara {
namespace {

std::string folder_of(const ComputationSettings& settings) {
    return qmp::FileIO::with_trailing_slash(settings.output_folder());
}

std::string name_of(const ComputationSettings& settings, std::uint32_t radix,
                    const std::string& algorithm_name) {
    return qmp::digits_name(settings.constant().short_name(), radix, algorithm_name);
}

// The folder of the digits of one radix, where they have one.
bool has_folder(const ComputationSettings& settings) {
    const std::uint64_t per_file = settings.digits_per_file();
    return per_file != 0 && per_file != qmp::unlimited_digits_per_file;
}

// The only file, or the first one.
std::string path_of(const ComputationSettings& settings, std::uint32_t radix,
                    const std::string& algorithm_name) {
    const std::string name = name_of(settings, radix, algorithm_name);
    if (settings.digits_per_file() == 0) return folder_of(settings) + name + ".txt";
    return folder_of(settings) + (has_folder(settings) ? name + "/" : "") + name + " - 0.qcd";
}

void check_output_file(const ComputationSettings& settings, std::uint32_t radix,
                       const std::string& algorithm_name) {
    constexpr std::uint32_t access_denied = 5;
    if (has_folder(settings)) {
        const std::string folder = folder_of(settings) + name_of(settings, radix, algorithm_name) + "/";
        qmp::FileIO::create_folder(folder);
        if (!qmp::FileIO::path_check(folder)) {
            throw qmp::FileIO::FileException("", "The folder for the digit files cannot be written.", folder,
                                             access_denied);
        }
    }
    const std::string path = path_of(settings, radix, algorithm_name);
    if (qmp::os::directory_exists(path)) {
        throw qmp::FileIO::FileException("", "A folder has the name of the digit file.", path, access_denied);
    }
}

std::uint64_t output_bytes(std::uint64_t digits, std::uint64_t per_file, std::uint64_t word_digits) {
    if (digits == 0) return 0;
    constexpr std::uint64_t whole_part = 22;
    constexpr std::uint64_t header = 256;
    if (per_file == 0) return digits + whole_part;
    const auto bytes = [&](std::uint64_t count) {
        return header + (count + word_digits - 1) / word_digits * 8;
    };
    if (per_file >= digits) return bytes(digits);
    const std::uint64_t rest = digits % per_file;
    return digits / per_file * bytes(per_file) + (rest > 0 ? bytes(rest) : 0);
}

}  // namespace

// Digit files that give up once instead of throwing.
class OutputFiles::Sink final : public qmp::DigitSink {
  public:
    Sink(OutputFiles& owner, std::size_t file, std::uint32_t radix, const std::string& first_digits)
        : owner_(owner), file_(file) {
        guarded([&] { writer_ = owner_.open(radix, first_digits); });
    }
    void write(char* digits, std::uint64_t count) override {
        guarded([&] {
            if (writer_) writer_->write(digits, count);
        });
        count_files();
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
    void count_files() {
        if (const auto* compressed = dynamic_cast<qmp::QCDWriter*>(writer_.get())) {
            owner_.files_[file_].files = compressed->next_file_number();
        }
    }

    OutputFiles& owner_;
    std::size_t file_;
    std::unique_ptr<qmp::DigitWriter> writer_;
};

qmp::OpenSink OutputFiles::opener(std::uint32_t radix) {
    return [this, radix](const std::string& first_digits) -> std::unique_ptr<qmp::DigitSink> {
        files_.push_back({path_of(settings_, radix, algorithm_name_)});
        return std::make_unique<Sink>(*this, files_.size() - 1, radix, first_digits);
    };
}

std::unique_ptr<qmp::DigitWriter> OutputFiles::open(std::uint32_t radix,
                                                    const std::string& first_digits) const {
    if (settings_.digits_per_file() == 0) {
        return std::make_unique<qmp::TextWriter>(path_of(settings_, radix, algorithm_name_), first_digits,
                                                 true, radix);
    }
    return std::make_unique<qmp::QCDWriter>(settings_.output_folder(),
                                            name_of(settings_, radix, algorithm_name_), first_digits,
                                            settings_.digits_per_file(), 0, radix);
}

void OutputFiles::note_failure(std::size_t file, const qmp::Exception& exception) {
    files_[file].complete = false;
    if (!failure_) failure_ = exception.clone();
    progress_.message("The digits cannot be written to the file; the computation goes on without it.", 'R');
}

void check_output_files(const ComputationSettings& settings, const std::string& algorithm_name) {
    if (settings.hexadecimal_digits() > 0) check_output_file(settings, 16, algorithm_name);
    check_output_file(settings, 10, algorithm_name);
}

std::uint64_t output_bytes(const ComputationSettings& settings) {
    const std::uint64_t per_file = settings.digits_per_file();
    return output_bytes(settings.decimal_digits(), per_file, qmp::decimal_digits_per_decimal_word) +
           output_bytes(settings.hexadecimal_digits(), per_file, qmp::hexadecimal_digits_per_word);
}

}  // namespace kelvara
