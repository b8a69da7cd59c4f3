#include "digitfiles/text_writer.h"

#include "digitfiles/text_reader.h"
#include "errors/file_exception.h"
#include "radix/digit_codecs.h"

namespace qmp {

TextWriter::TextWriter(const std::string& path, const std::string& first_digits, bool convert,
                       std::uint32_t radix)
    : radix_(radix) {
    const auto fail = [&](const char* message, std::uint32_t code = 0) {
        throw FileIO::FileException("TextWriter::TextWriter()", message, path, code);
    };
    file_.create(path);
    if (!first_digits.empty()) {
        const std::size_t point = first_digits.find('.');
        if (point == std::string::npos) fail("No decimal place was found.");
        if (file_.write(first_digits.data(), point + 1) != point + 1) {
            fail("Error writing to file.", file_.last_error());
        }
    }
    if (convert) {
        if (radix != 10 && radix != 16) fail("Unsupported Radix");
        converter_ = radix == 10 ? raw_to_dec : raw_to_hex;
    }
}

TextWriter::~TextWriter() {
    if (file_.is_open()) flush_or_print();
}

void TextWriter::write(char* digits, std::uint64_t count) {
    flush_before(digits);
    if (converter_) converter_(digits, digits, count);
    if (file_.write(digits, count) != count) {
        throw FileIO::FileException("TextWriter::write()", "Error writing to file.", file_.path(),
                                    file_.last_error());
    }
}

std::unique_ptr<DigitReader> TextWriter::close() {
    flush();
    const std::string path = file_.path();
    file_.close();
    return std::make_unique<TextReader>(path, false, radix_);
}

}  // namespace qmp
