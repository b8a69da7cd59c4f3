#include "digitfiles/qcd_writer.h"

#include "digitfiles/qcd_reader.h"
#include "errors/file_exception.h"

namespace qmp {

QCDWriter::QCDWriter(const std::string& directory, const std::string& name, const std::string& first_digits,
                     std::uint64_t digits_per_file, std::uint64_t first_file_number, std::uint32_t radix,
                     std::uint64_t buffer_bytes, Word* buffer, ProgressCallback progress)
    : folder_(directory.empty() ? std::string() : FileIO::with_trailing_slash(directory)),
      name_(name),
      first_digits_(first_digits),
      digits_per_file_(digits_per_file),
      first_file_number_(first_file_number),
      next_file_number_(first_file_number),
      radix_(radix),
      words_(buffer),
      buffer_words_(buffer_bytes / sizeof(Word)),
      progress_(std::move(progress)) {
    const auto refuse = [&](const char* message) {
        throw FileIO::FileException("QCDWriter::QCDWriter()", message, folder_ + name_);
    };
    if (radix != 10 && radix != 16) refuse("Unsupported Radix");
    if (buffer_bytes < least_buffer_bytes) refuse("Requested buffer size is too small.");
    if (digits_per_file < least_digits_per_file) refuse("Invalid Digits per File");
    if (digits_per_file != unlimited_digits_per_file) {
        folder_ += name + "/";
        FileIO::create_folder(folder_);
    }
    if (words_) return;
    own_buffer_ = CheckedWords(nullptr, buffer_words_);
    words_ = own_buffer_.data();
}

QCDWriter::~QCDWriter() {
    try {
        finish();
    } catch (const Exception& exception) {
        exception.print();
    }
}

std::string QCDWriter::file_path(std::uint64_t file_number) const {
    return folder_ + name_ + " - " + std::to_string(file_number) + ".qcd";
}

void QCDWriter::write(char* digits, std::uint64_t count) {
    flush_before(digits);
    while (count > 0) {
        if (!file_ || file_->is_full()) {
            file_.emplace(file_path(next_file_number_), first_digits_, digits_per_file_, next_file_number_,
                          radix_);
            ++next_file_number_;
        }
        const std::uint64_t done = file_->write_chars(digits, count, words_, buffer_words_);
        digits += done;
        count -= done;
        digits_written_ += done;
        if (progress_) progress_(digits_written_);
    }
}

void QCDWriter::finish() {
    flush();
    if (file_) file_->close();
}

std::unique_ptr<DigitReader> QCDWriter::close() {
    finish();
    if (next_file_number_ == first_file_number_) return nullptr;
    return std::make_unique<QCDReader>(file_path(first_file_number_));
}

}  // namespace qmp
