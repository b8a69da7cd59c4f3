// Reads one compressed digit file (qcd_file_writer.h). Digits are read where they stand: nothing before them
// is touched.
//
// Whatever the file holds, it ends in digits that the file really has or in a FileException with the path.
// Used by one thread at a time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "multiply/word.h"
#include "swap/sequential_file.h"

namespace qmp {

class QCDFileReader {
  public:
    // Words to digits, the first word first.
    using Unpacker = void (*)(char* digits, const Word* words, std::uint64_t n);
    // Headers are some two hundred bytes.
    static constexpr std::uint64_t largest_header = 65536;

    explicit QCDFileReader(const std::string& path);

    // Words from the file's first on.
    void read_words(std::uint64_t position, Word* words, std::uint64_t count);
    // The digits [position, position + count), counted over the whole result; all of them in this file.
    void read_chars(std::uint64_t position, char* output, std::uint64_t count, Word* buffer,
                    std::uint64_t buffer_words, Unpacker unpack);

    const std::string& path() const { return file_.path(); }
    // "1.0.0" or "1.1.0"
    const std::string& version() const { return version_; }
    // 10 or 16.
    std::uint32_t radix() const { return radix_; }
    const std::string& first_digits() const { return first_digits_; }
    // Of the whole result; 0 when the file does not tell.
    std::uint64_t total_digits() const { return total_digits_; }
    std::uint64_t digits_per_file() const { return digits_per_file_; }
    std::uint64_t file_number() const { return file_number_; }
    std::uint64_t digits_per_word() const { return word_digits_; }
    std::uint64_t words() const { return words_; }
    // The digits of the whole result that the file holds.
    std::uint64_t start() const { return start_; }
    std::uint64_t end() const { return end_; }
    // Of the first word, in bytes.
    std::uint64_t data_offset() const { return data_offset_; }

  private:
    void read_header();
    void take_line(std::string_view line);
    std::uint64_t parse_number(std::string_view value) const;
    void compute_layout();
    void read_digits(std::uint64_t position, char* output, std::uint64_t count, Word* buffer,
                     std::uint64_t buffer_words, Unpacker unpack);
    void read_checked(std::uint64_t position, Word* words, std::uint64_t count);
    [[noreturn]] void fail(const std::string& message) const;

    FileIO::SequentialFile file_;
    std::string version_;
    std::uint32_t radix_ = 0;
    std::string first_digits_;
    std::uint64_t total_digits_ = 0;
    std::uint64_t digits_per_file_ = 0;
    std::uint64_t file_number_ = 0;
    bool has_file_number_ = false;
    std::uint64_t word_digits_ = 0;
    std::uint64_t words_ = 0;
    std::uint64_t start_ = 0;
    std::uint64_t end_ = 0;
    std::uint64_t data_offset_ = 0;
};

}  // namespace qmp
