// Writes one compressed digit file: a header in text and the digits in 64-bit words, 19 decimal or 16
// hexadecimal digits in each, the first of them the most significant.
//
// Failures are FileExceptions with the path; what was written stays in the file, whose total number of digits
// is 0 unless close() has succeeded. Used by one thread at a time.
#pragma once

#include <cstdint>
#include <string>

#include "multiply/word.h"
#include "swap/sequential_file.h"

namespace qmp {

// All digits of a result in one file.
constexpr std::uint64_t unlimited_digits_per_file = ~std::uint64_t{0};
// Readers refuse less.
constexpr std::uint64_t least_digits_per_file = 100;

class QCDFileWriter {
  public:
    // Creates the file and writes the header. `first_digits` are the integer part and the point. File k of a
    // result holds its fractional digits from k * digits_per_file on.
    QCDFileWriter(const std::string& path, const std::string& first_digits, std::uint64_t digits_per_file,
                  std::uint64_t file_number, std::uint32_t radix);
    QCDFileWriter(const QCDFileWriter&) = delete;
    QCDFileWriter& operator=(const QCDFileWriter&) = delete;
    // Closes the file; what goes wrong then is printed.
    ~QCDFileWriter();

    // Words as they stand in the file. They do not count as digits.
    void write_words(const Word* words, std::uint64_t count);
    // Takes digit values (0 to 9 or 0 to 15) and returns how many: fewer than `count` exactly when the file
    // has become full, and is closed then. Whole words are packed into `buffer` on their way.
    std::uint64_t write_chars(const char* digits, std::uint64_t count, Word* buffer,
                              std::uint64_t buffer_words);
    // Completes the last word with zeros, and enters the number of digits of the whole result when the file
    // is not full, which makes it the last one. A closed file stays as it is.
    void close();

    // After a failed write, too, the file is closed.
    bool is_open() const { return open_; }
    bool is_full() const { return digits_written_ == digits_per_file_; }
    const std::string& path() const { return file_.path(); }
    std::uint64_t digits_written() const { return digits_written_; }

  private:
    using Packer = void (*)(Word* words, const char* digits, std::uint64_t n);

    void write_header(const std::string& first_digits);
    void write_partial_word();
    void write_total();
    [[noreturn]] void fail(const char* function, const char* message);

    FileIO::SequentialFile file_;
    std::uint32_t radix_;
    std::uint64_t word_digits_;
    Packer pack_;
    std::uint64_t digits_per_file_;
    std::uint64_t file_number_;
    std::uint64_t total_offset_ = 0;  // of the header's number of all digits, in bytes
    std::uint64_t words_per_file_;
    std::uint64_t words_written_ = 0;
    std::uint64_t digits_written_ = 0;
    char partial_[19] = {};  // digits that wait for a whole word
    std::uint64_t partial_digits_ = 0;
    bool open_ = false;
};

}  // namespace qmp
