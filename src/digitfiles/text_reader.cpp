#include "digitfiles/text_reader.h"

#include "console/console.h"
#include "console/format.h"
#include "errors/file_exception.h"
#include "radix/digit_codecs.h"

namespace qmp {

TextReader::TextReader(const std::string& path, bool raw, std::uint32_t radix) : radix_(radix) {
    file_.open(path);
    if (radix_ == 0) auto_detect_radix();
    set_raw(raw);
    find_point();
}

void TextReader::auto_detect_radix() {
    file_.seek(0);
    radix_ = 10;
    for (std::uint64_t i = 0; i < detection_bytes; ++i) {
        char c;
        if (file_.read(&c, 1) != 1) return;
        if (c == '.' || (c >= '0' && c <= '9')) continue;
        if (c < 'a' || c > 'f') throw StringException("TextReader::auto_detect_radix()", "Invalid Digit");
        radix_ = 16;
        return;
    }
}

void TextReader::find_point() {
    const auto fail = [this](const char* message) {
        throw FileIO::FileException("TextReader::TextReader()", message, file_.path());
    };
    file_.seek(0);
    char c = 0;
    while (c != '.') {
        if (data_offset_ == largest_header) {
            fail("A decimal place was not found within the first 63 bytes of the file.");
        }
        if (file_.read(&c, 1) != 1) fail("Unexpected End of File");
        ++data_offset_;
    }
    digits_ = file_.size() - data_offset_;
}

void TextReader::set_raw(bool raw) {
    if (radix_ != 10 && radix_ != 16) throw StringException("TextReader::set_raw()", "Unsupported Radix");
    converter_ = !raw ? nullptr : radix_ == 10 ? dec_to_raw : hex_to_raw;
    empty_buffer();
}

bool TextReader::check_range(std::uint64_t start, std::uint64_t end) {
    if (start >= end) throw StringException("TextReader::check_range()", "Invalid Parameters");
    return start < digits_ && end <= digits_;
}

void TextReader::read(std::uint64_t position, char* output, std::uint64_t count) {
    if (count > digits_ || position > digits_ - count) {
        throw StringException("TextReader::read()", "Out of range.");
    }
    file_.seek(data_offset_ + position);
    if (file_.read(output, count) != count) {
        throw StringException("TextReader::read()", "Error Reading from File");
    }
    if (converter_ && !converter_(output, output, count)) {
        throw StringException("TextReader::read()", "Invalid Digit: " + std::to_string(position) + " - " +
                                                        std::to_string(position + count));
    }
}

std::string TextReader::get_first_digits(std::uint64_t count) {
    std::string digits(count, '\0');
    file_.seek(0);
    digits.resize(file_.read(digits.data(), count));
    return digits;
}

void TextReader::print_info() const {
    const auto line = [](const char* label, std::uint64_t value) {
        console::print_column_line(24, label, console::format_int(value));
    };
    console::println("File: " + file_.path());
    console::newline();
    line("Radix:", radix_);
    line("Decimal Place Offset:", data_offset_);
    line("Digits in File:", digits_);
    line("Iterator File Offset:", position_);
    line("Iterator Buffer Offset:", buffer_offset_);
    console::newline();
}

}  // namespace qmp
