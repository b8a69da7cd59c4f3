// One write to standard output: text gathered as UTF-16 and handed to the system in pieces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qmp::console {

// The largest number of UTF-16 units that one call to the console carries.
constexpr std::size_t largest_piece = 4096;

// Lives on the stack and allocates nothing, so that a crash handler can print. No piece splits a
// surrogate pair. What is not a console receives the same characters as UTF-8.
class OutputBuffer {
  public:
    void append(std::string_view text);
    void append(std::u16string_view text);
    void flush();
    // UTF-16 units appended so far.
    std::uint64_t written() const { return written_; }

  private:
    void append_character(char32_t character);

    char16_t units_[largest_piece];
    std::size_t used_ = 0;
    std::uint64_t written_ = 0;
};

}  // namespace qmp::console
