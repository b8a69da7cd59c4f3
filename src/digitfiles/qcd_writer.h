// Compressed digit files: a result in one ".qcd" file, or in a folder of them with a fixed number of digits
// each (qcd_file_writer.h), "Name/Name - 0.qcd", "Name/Name - 1.qcd" and so on.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "digitfiles/digit_writer.h"
#include "digitfiles/qcd_file_writer.h"

namespace qmp {

class QCDWriter final : public DigitWriter {
  public:
    // Called with the digits written so far.
    using ProgressCallback = std::function<void(std::uint64_t digits)>;
    static constexpr std::uint64_t least_buffer_bytes = 4096;
    static constexpr std::uint64_t default_buffer_bytes = std::uint64_t{1} << 20;

    // With unlimited_digits_per_file the one file lies in `directory` itself, else the folder `name` is made
    // in it; one that is there is used, and its files are replaced. A file is created when its first digit
    // comes. The buffer, the caller's if one is given (8-byte aligned, it must outlive the writer), is for
    // packed words. FileException ("QCDWriter::QCDWriter()").
    QCDWriter(const std::string& directory, const std::string& name, const std::string& first_digits,
              std::uint64_t digits_per_file, std::uint64_t first_file_number, std::uint32_t radix,
              std::uint64_t buffer_bytes = default_buffer_bytes, Word* buffer = nullptr,
              ProgressCallback progress = {});
    ~QCDWriter() override;

    // Takes digit values, which stay as they are.
    void write(char* digits, std::uint64_t count) override;
    // Writes what is staged and closes the file; nothing can be written afterwards.
    void finish() override;
    // Returns a QCDReader on the first file, delivering characters; nothing when no digit was written.
    std::unique_ptr<DigitReader> close() override;

    // The folder that the files lie in, with a '/' at its end.
    const std::string& folder() const { return folder_; }
    std::string file_path(std::uint64_t file_number) const;
    // The number behind the last file's that was begun.
    std::uint64_t next_file_number() const { return next_file_number_; }

  private:
    std::string folder_;
    std::string name_;
    std::string first_digits_;
    std::uint64_t digits_per_file_;
    std::uint64_t first_file_number_;
    std::uint64_t next_file_number_;
    std::uint32_t radix_;
    CheckedWords own_buffer_;
    Word* words_;
    std::uint64_t buffer_words_;
    std::optional<QCDFileWriter> file_;
    ProgressCallback progress_;
    std::uint64_t digits_written_ = 0;
};

}  // namespace qmp
