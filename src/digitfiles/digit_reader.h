// Digits read back from files, in any order or one after the other.
//
// Positions count fractional digits from 0, directly behind the point. A reader delivers characters
// ('0' to '9', 'a' to 'f') or, in raw mode, digit values (0 to 15). Failures are exceptions; a reader is
// used by one thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace qmp {

class DigitReader {
  public:
    // Digits that the iterator loads at a time.
    static constexpr std::uint64_t iterator_buffer_digits = 67108864;

    DigitReader() = default;
    DigitReader(const DigitReader&) = delete;
    DigitReader& operator=(const DigitReader&) = delete;
    virtual ~DigitReader() = default;

    // The file type: "txt" or "qcd".
    virtual const char* get_extension() const = 0;
    virtual void read(std::uint64_t position, char* output, std::uint64_t count) = 0;
    // What is known of the file, and where the iterator stands, on the console.
    virtual void print_info() const = 0;
    // 10 or 16.
    virtual std::uint32_t get_radix() const = 0;
    // Fractional digits; 0 when that is unknown.
    virtual std::uint64_t get_digits() const = 0;
    // Values instead of characters from here on. Empties the iterator's buffer.
    virtual void set_raw(bool raw) = 0;
    // True when the digits [start, end) can be read.
    virtual bool check_range(std::uint64_t start, std::uint64_t end) = 0;
    // The integer part and the point; `count` limits it where the file itself does not tell them apart.
    virtual std::string get_first_digits(std::uint64_t count) = 0;
    // Loads the iterator's buffer from position(). The digits stand at the buffer's end, so that the buffer
    // is used up exactly there. StringException ("DigitReader::reload()") when no digit is left, or when
    // the number of digits is unknown and the reader does not override this.
    virtual void reload();

    // The iterator's next digit will be the one at `position`, which may be the end.
    void set_pos(std::uint64_t position);
    // The iterator's next digit.
    char next() {
        if (buffer_offset_ == buffer_size_) reload();
        ++position_;
        return buffer_[buffer_offset_++];
    }

    // The iterator's next digits in one piece: at least one and at most `limit` of them (which is not 0). They
    // stay where they are until the reader is used again.
    std::span<const char> take(std::uint64_t limit);

    std::uint64_t position() const { return position_; }
    std::uint64_t buffer_offset() const { return buffer_offset_; }
    std::uint64_t buffer_size() const { return buffer_size_; }
    const char* buffer() const { return buffer_.get(); }

  protected:
    void allocate_buffer();
    void empty_buffer() { buffer_offset_ = buffer_size_; }

    std::unique_ptr<char[]> buffer_;  // absent until first used
    std::uint64_t buffer_size_ = 0;
    std::uint64_t position_ = 0;       // of the iterator's next digit, and so of the next load
    std::uint64_t buffer_offset_ = 0;  // of the next digit in the buffer; buffer_size_ when it is empty
};

}  // namespace qmp
