#include "console/output_buffer.h"

#include "platform/os/console_device.h"
#include "platform/os/unicode.h"

namespace qmp::console {
namespace {

void write_as_bytes(std::u16string_view text) {
    char bytes[4096];
    std::size_t used = 0;
    while (!text.empty()) {
        if (used > sizeof bytes - 4) {
            os::write_bytes({bytes, used});
            used = 0;
        }
        const os::DecodedCharacter decoded = os::decode_utf16(text);
        used += os::encode_utf8(decoded.character, bytes + used);
        text.remove_prefix(decoded.length);
    }
    os::write_bytes({bytes, used});
}

}  // namespace

void OutputBuffer::append_character(char32_t character) {
    const std::size_t needed = character < 0x10000 ? 1 : 2;
    if (used_ + needed > largest_piece) flush();
    used_ += os::encode_utf16(character, units_ + used_);
    written_ += needed;
}

void OutputBuffer::append(std::string_view text) {
    while (!text.empty()) {
        const os::DecodedCharacter decoded = os::decode_utf8(text);
        append_character(decoded.character);
        text.remove_prefix(decoded.length);
    }
}

void OutputBuffer::append(std::u16string_view text) {
    while (!text.empty()) {
        const os::DecodedCharacter decoded = os::decode_utf16(text);
        append_character(decoded.character);
        text.remove_prefix(decoded.length);
    }
}

void OutputBuffer::flush() {
    if (used_ == 0) return;
    const std::u16string_view piece(units_, used_);
    if (os::output_is_console()) {
        os::write_console(piece);
    } else {
        write_as_bytes(piece);
    }
    used_ = 0;
}

}  // namespace qmp::console
