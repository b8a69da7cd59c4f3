#include "digitfiles/text_writer.h"

#include "digitfiles/text_reader.h"
#include "errors/file_exception.h"
#include "radix/digit_codecs.h"

namespace qmp {

TextWriter::TextWriter(const std::string& path, const std::string& first_digits, bool convert,
                       std::uint32_t radix)
    : radix_(radix) {
    constexpr const char* function = "TextWriter::TextWriter()";
    file_.create_for_streaming(path);
    if (!first_digits.empty()) {
        const std::size_t point = first_digits.find('.');
        if (point == std::string::npos) fail(function, "No decimal place was found.");
        if (file_.write(first_digits.data(), point + 1) != point + 1)
            fail(function, "Error writing to file.");
    }
    if (convert) {
        if (radix != 10 && radix != 16) fail(function, "Unsupported Radix");
        converter_ = radix == 10 ? raw_to_dec : raw_to_hex;
    }
}

TextWriter::~TextWriter() {
    // An object that could not be finished keeps its file open; everything that was written is in it.
    if (!file_.is_open()) return;
    try {
        finish();
    } catch (const Exception& exception) {
        exception.print();
    }
}

void TextWriter::write(char* digits, std::uint64_t count) {
    flush_before(digits);
    if (converter_) converter_(digits, digits, count);
    if (file_.write(digits, count) != count) fail("TextWriter::write()", "Error writing to file.");
}

void TextWriter::finish() {
    flush();
    if (!file_.is_open()) return;
    file_.close();
    // Blocks that do not reach the disk may show only now.
    if (file_.last_error() != 0) fail("TextWriter::close()", "Error writing to file.");
}

std::unique_ptr<DigitReader> TextWriter::close() {
    finish();
    return std::make_unique<TextReader>(file_.path(), false, radix_);
}

void TextWriter::fail(const char* function, const char* message) const {
    throw FileIO::FileException(function, message, file_.path(), file_.last_error());
}

}  // namespace qmp
