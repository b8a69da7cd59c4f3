// Text digit files: the integer part, a point and every fractional digit, as 8-bit characters, with
// nothing else in the file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "digitfiles/digit_writer.h"
#include "swap/sequential_file.h"

namespace qmp {

class TextWriter final : public DigitWriter {
  public:
    // Creates the file and writes `first_digits` up to its first point; empty first digits write nothing
    // (a TextReader cannot read such a file). With `convert`, write() takes digit values, and the radix
    // must be 10 or 16; without, it takes characters. FileException ("TextWriter::TextWriter()").
    TextWriter(const std::string& path, const std::string& first_digits, bool convert, std::uint32_t radix);
    ~TextWriter() override;

    // A converted block holds characters afterwards. FileException ("TextWriter::write()") with the
    // system's code when not everything could be written; what was, stays in the file.
    void write(char* digits, std::uint64_t count) override;
    // Writes what is staged and closes the file; nothing can be written afterwards. FileException
    // ("TextWriter::close()") when the system reports only then that digits did not reach the disk.
    void finish() override;
    // Returns a TextReader that delivers characters.
    std::unique_ptr<DigitReader> close() override;

  private:
    using Converter = void (*)(char* text, const char* raw, std::uint64_t n);

    [[noreturn]] void fail(const char* function, const char* message) const;

    std::uint32_t radix_;
    FileIO::SequentialFile file_;
    Converter converter_ = nullptr;
};

}  // namespace qmp
