#include "digitfiles/digit_reader.h"

#include <algorithm>

#include "errors/exception.h"

namespace qmp {

void DigitReader::allocate_buffer() {
    if (buffer_) return;
    buffer_ = std::make_unique_for_overwrite<char[]>(iterator_buffer_digits);
    buffer_size_ = iterator_buffer_digits;
    buffer_offset_ = iterator_buffer_digits;
}

void DigitReader::reload() {
    allocate_buffer();
    const std::uint64_t total = get_digits();
    if (total == 0) {
        throw StringException("DigitReader::reload()",
                              "DigitReader::reload() does not support unknown sizes.\n"
                              "You must override this function when total_digits could be 0.");
    }
    if (total <= position_) {
        throw StringException("DigitReader::reload()", "No more digits left: " + std::to_string(total));
    }
    const std::uint64_t left = total - position_;
    const std::uint64_t offset = left < buffer_size_ ? buffer_size_ - left : 0;
    empty_buffer();  // should the read fail
    read(position_, buffer_.get() + offset, buffer_size_ - offset);
    buffer_offset_ = offset;
}

void DigitReader::set_pos(std::uint64_t position) {
    const std::uint64_t total = get_digits();
    if (total != 0 && position > total) throw StringException("DigitReader::set_pos()", "Out of range.");
    empty_buffer();
    position_ = position;
}

std::span<const char> DigitReader::take(std::uint64_t limit) {
    if (buffer_offset_ == buffer_size_) reload();
    const std::uint64_t count = std::min(limit, buffer_size_ - buffer_offset_);
    const std::span<const char> digits(buffer_.get() + buffer_offset_, count);
    buffer_offset_ += count;
    position_ += count;
    return digits;
}

}  // namespace qmp
