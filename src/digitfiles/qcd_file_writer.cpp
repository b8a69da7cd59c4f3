#include "digitfiles/qcd_file_writer.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "errors/file_exception.h"
#include "radix/digit_codecs.h"

namespace qmp {
namespace {

constexpr const char* constructor = "QCDFileWriter::QCDFileWriter()";
constexpr const char* not_written = "Error writing to file.";
constexpr std::uint64_t total_characters = 20;

std::string padded_total(std::uint64_t total) {
    char text[total_characters + 1];
    std::snprintf(text, sizeof(text), "%020" PRIu64, total);
    return text;
}

}  // namespace

QCDFileWriter::QCDFileWriter(const std::string& path, const std::string& first_digits,
                             std::uint64_t digits_per_file, std::uint64_t file_number, std::uint32_t radix)
    : radix_(radix),
      word_digits_(radix == 10 ? decimal_digits_per_decimal_word : hexadecimal_digits_per_word),
      pack_(radix == 10 ? pack_d19 : pack_h16),
      digits_per_file_(digits_per_file),
      file_number_(file_number),
      words_per_file_(digits_per_file / word_digits_ + (digits_per_file % word_digits_ != 0)) {
    const auto refuse = [&path](const char* message) {
        throw FileIO::FileException(constructor, message, path);
    };
    if (radix != 10 && radix != 16) refuse("Unsupported Radix");
    if (digits_per_file < least_digits_per_file) refuse("Invalid Digits per File");
    file_.create_for_streaming(path);
    write_header(first_digits);
    open_ = true;
}

QCDFileWriter::~QCDFileWriter() {
    try {
        close();
    } catch (const Exception& exception) {
        exception.print();
    }
}

void QCDFileWriter::write_header(const std::string& first_digits) {
    std::string header = "#Compressed Digit File\r\n\r\nFileVersion:\t1.1.0\r\n\r\n";
    header += "Base:\t" + std::to_string(radix_) + "\r\n\r\n";
    header += "FirstDigits:\t" + first_digits + "\r\n\r\n";
    header += "TotalDigits:\t";
    total_offset_ = header.size();
    header += padded_total(0) + "\r\n\r\n";
    header += "Blocksize:\t" + std::to_string(digits_per_file_) + "\r\n";
    header += "BlockID:\t" + std::to_string(file_number_) + "\r\n\r\n";
    header += "EndHeader\r\n\r\n";
    header += '\0';
    if (file_.write(header.data(), header.size()) != header.size()) fail(constructor, not_written);
}

void QCDFileWriter::write_words(const Word* words, std::uint64_t count) {
    constexpr const char* function = "QCDFileWriter::write_words()";
    if (count > words_per_file_ - words_written_) {
        throw FileIO::FileException(function, "Attempted to write beyond the range of this file.", path());
    }
    const std::uint64_t bytes = count * sizeof(Word);
    if (file_.write(words, bytes) != bytes) fail(function, not_written);
    words_written_ += count;
}

std::uint64_t QCDFileWriter::write_chars(const char* digits, std::uint64_t count, Word* buffer,
                                         std::uint64_t buffer_words) {
    if (!open_) {
        throw FileIO::FileException("QCDFileWriter::write_chars()", "This file is already closed.", path());
    }
    const std::uint64_t wanted = std::min(count, digits_per_file_ - digits_written_);
    for (std::uint64_t done = 0; done < wanted;) {
        const std::uint64_t words =
            partial_digits_ == 0 ? std::min((wanted - done) / word_digits_, buffer_words) : 0;
        if (words > 0) {
            pack_(buffer, digits + done, words);
            write_words(buffer, words);
            done += words * word_digits_;
            digits_written_ += words * word_digits_;
        } else {
            const std::uint64_t part = std::min(wanted - done, word_digits_ - partial_digits_);
            std::memcpy(partial_ + partial_digits_, digits + done, part);
            partial_digits_ += part;
            done += part;
            digits_written_ += part;
            if (partial_digits_ == word_digits_) write_partial_word();
        }
    }
    if (digits_written_ == digits_per_file_) close();
    return wanted;
}

// As a whole word, with zeros for the digits that are missing.
void QCDFileWriter::write_partial_word() {
    std::fill(partial_ + partial_digits_, partial_ + word_digits_, '\0');
    partial_digits_ = 0;
    Word word;
    pack_(&word, partial_, 1);
    write_words(&word, 1);
}

void QCDFileWriter::close() {
    if (!open_) return;
    open_ = false;  // also when something fails, which is reported once
    if (partial_digits_ > 0) write_partial_word();
    if (digits_written_ != digits_per_file_) write_total();
    file_.close();
    // Blocks that do not reach the disk may show only now.
    if (file_.last_error() != 0) fail("QCDFileWriter::close()", not_written);
}

void QCDFileWriter::write_total() {
    file_.seek(total_offset_);
    const std::string total = padded_total(file_number_ * digits_per_file_ + digits_written_);
    if (file_.write(total.data(), total.size()) != total.size()) fail("QCDFileWriter::close()", not_written);
}

// A file that lacks some of its digits is not to be given a total afterwards.
void QCDFileWriter::fail(const char* function, const char* message) {
    open_ = false;
    throw FileIO::FileException(function, message, path(), file_.last_error());
}

}  // namespace qmp
