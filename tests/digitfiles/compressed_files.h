// Compressed digit files as the format describes them, byte for byte and without the code under test.
#pragma once

#include <cstdint>
#include <string>

namespace kelvara_test {

struct CompressedFile {
    std::string digits = {};  // of this file, as characters
    std::uint32_t radix = 10;
    std::string first_digits = "3.";
    std::string version = "1.1.0";
    std::string total = "00000000000000000000";
    std::string digits_per_file = "1000000";
    std::string file_number = "0";
};

inline std::string compressed_header(const CompressedFile& file) {
    return "#Compressed Digit File\r\n\r\nFileVersion:\t" + file.version + "\r\n\r\nBase:\t" +
           std::to_string(file.radix) + "\r\n\r\nFirstDigits:\t" + file.first_digits +
           "\r\n\r\nTotalDigits:\t" + file.total + "\r\n\r\nBlocksize:\t" + file.digits_per_file +
           "\r\nBlockID:\t" + file.file_number + "\r\n\r\nEndHeader\r\n\r\n" + '\0';
}

inline std::string little_endian(std::uint64_t word) {
    std::string bytes;
    for (int i = 0; i < 8; ++i, word >>= 8) bytes += static_cast<char>(word & 0xff);
    return bytes;
}

inline unsigned digit_value(char c) {
    return static_cast<unsigned>(c <= '9' ? c - '0' : c - 'a' + 10);
}

inline std::string packed(std::string digits, std::uint32_t radix) {
    const std::size_t width = radix == 10 ? 19 : 16;
    while (digits.size() % width != 0) digits += '0';
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += width) {
        std::uint64_t word = 0;
        for (std::size_t k = i; k < i + width; ++k) word = word * radix + digit_value(digits[k]);
        bytes += little_endian(word);
    }
    return bytes;
}

inline std::string compressed_file(const CompressedFile& file) {
    return compressed_header(file) + packed(file.digits, file.radix);
}

inline std::string padded(std::uint64_t total) {
    const std::string text = std::to_string(total);
    return std::string(20 - text.size(), '0') + text;
}

// Digits that differ wherever they stand.
inline std::string some_digits(std::uint64_t n, std::uint32_t radix, std::uint64_t from = 0) {
    std::string digits;
    for (std::uint64_t i = from; i < from + n; ++i) {
        digits += "0123456789abcdef"[(i * 0x9e3779b97f4a7c15 >> 40) % radix];
    }
    return digits;
}

inline std::string values_of(std::string characters) {
    for (char& c : characters) c = static_cast<char>(digit_value(c));
    return characters;
}

}  // namespace kelvara_test
