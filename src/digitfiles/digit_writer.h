// Writers of digit files.
//
// Drivers hand over large blocks, which are converted in place and written without a copy. Callers with a
// few digits at a time stage them: staged digits reach the file before any later block does.
#pragma once

#include <cstdint>
#include <memory>

#include "digitfiles/digit_reader.h"
#include "platform/memory/checked_array.h"
#include "radix/digit_sink.h"

namespace qmp {

class DigitWriter : public DigitSink {
  public:
    static constexpr std::uint64_t staging_capacity = std::uint64_t{1} << 20;

    DigitWriter() = default;
    DigitWriter(const DigitWriter&) = delete;
    DigitWriter& operator=(const DigitWriter&) = delete;

    // Writes what is staged, closes the file and opens it for reading.
    virtual std::unique_ptr<DigitReader> close() = 0;

    // Takes a copy of the digits; allocates the staging buffer when first used.
    void stage(const char* digits, std::uint64_t count);
    // Writes the staged digits.
    void flush();

  protected:
    // The first part of every write(): staged digits go before a foreign block.
    void flush_before(const char* digits);

    CheckedWords buffer_;        // absent until first used
    std::uint64_t pending_ = 0;  // digits staged and not yet written

  private:
    char* staging() const { return reinterpret_cast<char*>(buffer_.data()); }
};

}  // namespace qmp
