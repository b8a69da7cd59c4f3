#include "digitfiles/qcd_file_reader.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "console/console.h"
#include "console/parse.h"
#include "digitfiles/qcd_file_writer.h"
#include "errors/file_exception.h"
#include "radix/digit_codecs.h"

namespace qmp {
namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
// Words read at a time: they and their digits are still in the cache when they are unpacked.
constexpr std::uint64_t batch_words = std::uint64_t{1} << 14;

std::uint64_t saturating_product(std::uint64_t a, std::uint64_t b, bool& fits) {
    std::uint64_t product;
    if (!__builtin_mul_overflow(a, b, &product)) return product;
    fits = false;
    return largest;
}

std::uint64_t saturating_sum(std::uint64_t a, std::uint64_t b, bool& fits) {
    std::uint64_t sum;
    if (!__builtin_add_overflow(a, b, &sum)) return sum;
    fits = false;
    return largest;
}

std::string range_text(std::uint64_t start, std::uint64_t end) {
    return std::to_string(start) + " - " + std::to_string(end);
}

}  // namespace

QCDFileReader::QCDFileReader(const std::string& path) {
    file_.open(path);
    read_header();
    compute_layout();
}

void QCDFileReader::read_header() {
    std::string header(largest_header, '\0');
    header.resize(file_.read(header.data(), header.size()));
    const bool cut = header.size() == largest_header;
    std::size_t at = header.find('\n');
    if (at == std::string::npos) fail("Invalid File Format");
    ++at;
    const auto fail_at_end = [&] { fail(cut ? "Invalid File Format" : "Error Reading File"); };
    for (;;) {
        const std::size_t end = header.find('\n', at);
        if (end == std::string::npos) fail_at_end();
        std::string_view line(header.data() + at, end - at);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        at = end + 1;
        if (line == "EndHeader") break;
        if (!line.empty()) take_line(line);
    }
    const std::size_t zero = header.find('\0', at);
    if (zero == std::string::npos) fail_at_end();
    data_offset_ = zero + 1;
}

void QCDFileReader::take_line(std::string_view line) {
    const std::size_t tab = line.find('\t');
    const std::string_view key = line.substr(0, tab);
    const std::string_view value = tab == std::string_view::npos ? std::string_view() : line.substr(tab + 1);
    if (key == "FileVersion:") version_ = value;
    if (key == "FirstDigits:") first_digits_ = value;
    if (key == "TotalDigits:") total_digits_ = parse_number(value);
    if (key == "Blocksize:") digits_per_file_ = parse_number(value);
    if (key == "BlockID:") {
        file_number_ = parse_number(value);
        has_file_number_ = true;
    }
    if (key != "Base:") return;
    // Whatever stands there, only 10 and 16 are accepted.
    radix_ = 0;
    for (const char c : value) radix_ = radix_ * 10 + static_cast<std::uint32_t>(c - '0');
}

std::uint64_t QCDFileReader::parse_number(std::string_view value) const {
    const auto number = console::parse_decimal_that_fits(value);
    if (value.empty() || value.find_first_not_of("0123456789") != std::string_view::npos || !number) {
        fail("Invalid File Format");
    }
    return *number;
}

void QCDFileReader::compute_layout() {
    if (version_.empty()) fail("No version # found.");
    if (version_ != "1.0.0" && version_ != "1.1.0") {
        fail(
            "This .qcd file is of a later format version.\n"
            "This version of the Ordalis is unable to view this file.");
    }
    if (digits_per_file_ < least_digits_per_file) fail("Invalid Digits per File");
    // Without it the digits would pass for the first ones.
    if (!has_file_number_) fail("Invalid File Format");
    if (total_digits_ != 0) digits_per_file_ = std::min(digits_per_file_, total_digits_);

    bool fits = true;
    start_ = saturating_product(file_number_, digits_per_file_, fits);
    end_ = saturating_sum(start_, digits_per_file_, fits);
    if (total_digits_ != 0 ? total_digits_ <= start_ : !fits) {
        fail("This file is out of range.\nStart:        " + std::to_string(start_) + "\nEnd:          " +
             std::to_string(end_) + "\nTotal Digits: " + std::to_string(total_digits_) + "\n");
    }
    if (total_digits_ != 0) end_ = std::min(end_, total_digits_);

    if (radix_ != 10 && radix_ != 16) fail("Unsupported Radix");
    word_digits_ = radix_ == 10 ? decimal_digits_per_decimal_word : hexadecimal_digits_per_word;
    words_ = (end_ - start_) / word_digits_ + ((end_ - start_) % word_digits_ != 0);
}

void QCDFileReader::read_words(std::uint64_t position, Word* words, std::uint64_t count) {
    if (count > words_ || position > words_ - count) {
        console::print_warning("Internal Error: Read out of Bounds");
        throw FileIO::FileException("QCDFileReader::read_words()",
                                    "QCDFile::read_words(ufL_t pos, u64_t* T, upL_t L)\n"
                                    "Read out of bounds.\n"
                                    "Requested Range: " +
                                        range_text(position, position + count) +
                                        "\nAvailable Range: " + range_text(0, words_),
                                    path());
    }
    file_.seek(data_offset_ + position * sizeof(Word));
    if (file_.read(words, count * sizeof(Word)) != count * sizeof(Word)) {
        throw FileIO::FileException("QCDFileReader::read_words()", "Error Reading File", path(),
                                    file_.last_error());
    }
}

// A decimal word beyond 10^19 has no digits: something has damaged it.
void QCDFileReader::read_checked(std::uint64_t position, Word* words, std::uint64_t count) {
    read_words(position, words, count);
    if (radix_ != 10) return;
    bool damaged = false;
    for (std::uint64_t i = 0; i < count; ++i) damaged |= words[i] >= decimal_word_base;
    if (damaged) {
        throw FileIO::FileException("QCDFileReader::read_chars()",
                                    "Invalid Digits: words " + range_text(position, position + count),
                                    path());
    }
}

void QCDFileReader::read_chars(std::uint64_t position, char* output, std::uint64_t count, Word* buffer,
                               std::uint64_t buffer_words, Unpacker unpack) {
    if (position < start_ || position > end_ || count > end_ - position) {
        throw FileIO::FileException("QCDFileReader::read_chars()",
                                    "void QCDFile::read_chars()\n"
                                    "Read out of bounds.\n"
                                    "Requested Range: " +
                                        range_text(position, position + count) +
                                        "\nAvailable Range: " + range_text(start_, end_),
                                    path());
    }
    read_digits(position - start_, output, count, buffer, buffer_words, unpack);
}

// Positions count from the file's first digit here.
void QCDFileReader::read_digits(std::uint64_t position, char* output, std::uint64_t count, Word* buffer,
                                std::uint64_t buffer_words, Unpacker unpack) {
    const std::uint64_t batch = std::min(buffer_words, batch_words);
    while (count > 0) {
        const std::uint64_t word = position / word_digits_;
        const std::uint64_t skipped = position % word_digits_;
        std::uint64_t done;
        if (skipped > 0 || count < word_digits_) {
            char digits[decimal_digits_per_decimal_word];
            read_checked(word, buffer, 1);
            unpack(digits, buffer, 1);
            done = std::min(count, word_digits_ - skipped);
            std::memcpy(output, digits + skipped, done);
        } else {
            const std::uint64_t words = std::min(count / word_digits_, batch);
            read_checked(word, buffer, words);
            unpack(output, buffer, words);
            done = words * word_digits_;
        }
        position += done;
        output += done;
        count -= done;
    }
}

void QCDFileReader::fail(const std::string& message) const {
    throw FileIO::FileException("QCDFileReader::QCDFileReader()", message, path(), file_.last_error());
}

}  // namespace qmp
