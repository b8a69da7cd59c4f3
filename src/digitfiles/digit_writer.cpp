#include "digitfiles/digit_writer.h"

#include <algorithm>
#include <cstring>

namespace qmp {

void DigitWriter::stage(const char* digits, std::uint64_t count) {
    if (!buffer_.data()) buffer_ = CheckedWords(nullptr, staging_capacity / sizeof(CheckedWords::Word));
    while (count > 0) {
        const std::uint64_t part = std::min(count, staging_capacity - pending_);
        std::memcpy(staging() + pending_, digits, part);
        pending_ += part;
        digits += part;
        count -= part;
        if (pending_ == staging_capacity) flush();
    }
}

void DigitWriter::flush() {
    // Given up before they are written: a failed write is reported once, not again by the destructor.
    const std::uint64_t count = pending_;
    pending_ = 0;
    if (count > 0) write(staging(), count);
}

void DigitWriter::flush_before(const char* digits) {
    if (pending_ > 0 && digits != staging()) flush();
}

}  // namespace qmp
