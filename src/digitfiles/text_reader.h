// Reads text digit files. Digits are read where they stand: nothing before them is touched.
#pragma once

#include <cstdint>
#include <string>

#include "digitfiles/digit_reader.h"
#include "swap/sequential_file.h"

namespace qmp {

class TextReader final : public DigitReader {
  public:
    // The point must be among the first bytes of a file.
    static constexpr std::uint64_t largest_header = 63;
    // Bytes that a radix is detected from. A hexadecimal file without a letter among them passes for a
    // decimal one.
    static constexpr std::uint64_t detection_bytes = 64;

    // Radix 0: detected. FileException ("TextReader::TextReader()") when there is no point, StringException
    // ("TextReader::auto_detect_radix()", "TextReader::set_raw()").
    explicit TextReader(const std::string& path, bool raw = false, std::uint32_t radix = 0);

    const char* get_extension() const override { return "txt"; }
    // StringException ("TextReader::read()"): beyond the end, a failing disk, an invalid digit in raw mode.
    void read(std::uint64_t position, char* output, std::uint64_t count) override;
    void print_info() const override;
    std::uint32_t get_radix() const override { return radix_; }
    std::uint64_t get_digits() const override { return digits_; }
    void set_raw(bool raw) override;
    // StringException ("TextReader::check_range()") for an empty range.
    bool check_range(std::uint64_t start, std::uint64_t end) override;
    // The first `count` bytes of the file; data_offset() of them are the integer part and the point.
    std::string get_first_digits(std::uint64_t count) override;

    // Of the first fractional digit, in bytes.
    std::uint64_t data_offset() const { return data_offset_; }

  private:
    using Converter = bool (*)(char* raw, const char* text, std::uint64_t n);

    void auto_detect_radix();
    void find_point();

    FileIO::SequentialFile file_;
    std::uint32_t radix_;
    Converter converter_ = nullptr;  // in raw mode
    std::uint64_t data_offset_ = 0;
    std::uint64_t digits_ = 0;
};

}  // namespace qmp
