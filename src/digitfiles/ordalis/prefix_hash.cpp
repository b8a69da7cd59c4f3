#include "digitfiles/ordalis/prefix_hash.h"

#include <algorithm>

#include "console/console.h"
#include "console/format.h"
#include "digitfiles/ordalis/prompts.h"
#include "errors/file_exception.h"
#include "numbers/check_value.h"
#include "radix/digit_codecs.h"
#include "radix/hash.h"

namespace Ordalis {

namespace console = qmp::console;

namespace {

// Packed digits and their words stay in a small cache together.
constexpr std::uint64_t words_at_once = 512;
constexpr std::uint64_t word_digits = qmp::decimal_digits_per_decimal_word;

// The digit values of the integer part.
std::string integer_part(qmp::DigitReader& reader, const std::string& path) {
    const auto fail = [&](const char* message) {
        throw qmp::FileIO::FileException("ComputeHash()", message, path);
    };
    std::string digits = first_digits(reader);
    if (!digits.ends_with('.')) fail("A decimal place was not found within the first 63 bytes of the file.");
    digits.pop_back();
    if (!qmp::dec_to_raw(digits.data(), digits.data(), digits.size())) fail("Invalid Digit");
    return digits;
}

}  // namespace

void PrefixHash::append(std::span<const char> values) {
    is_zero_ = is_zero_ && std::ranges::all_of(values, [](char value) { return value == 0; });
    words_.resize(words_at_once);
    while (values.size() >= word_digits) {
        const std::uint64_t words = std::min(values.size() / word_digits, words_at_once);
        qmp::d19_to_u64(words_.data(), values.data(), words);
        residue_ = qmp::hash_words(residue_, qmp::decimal_word_radix, words_.data(), words);
        values = values.subspan(words * word_digits);
    }
    for (const char value : values) {
        residue_ = qmp::check_add(qmp::check_mul(residue_, 10), static_cast<unsigned char>(value));
    }
}

std::uint64_t PrefixHash::value() const {
    return residue_ == 0 && !is_zero_ ? qmp::check_modulus : residue_;
}

void run_hash(qmp::DigitReader& reader, const std::string& path) {
    console::newline();
    const std::uint64_t last = ask_count("Ending Digit: ", 1, last_digit(reader));
    console::newline();
    if (is_accessible(reader, 0, last)) hash_prefix(reader, last, path);
}

void hash_prefix(qmp::DigitReader& reader, std::uint64_t end, const std::string& path,
                 std::uint64_t line_digits) {
    PrefixHash hash;
    hash.append(integer_part(reader, path));
    reader.set_raw(true);
    reader.set_pos(0);
    while (reader.position() < end) {
        const std::uint64_t line_end = reader.position() + std::min(line_digits, end - reader.position());
        while (reader.position() < line_end) hash.append(reader.take(line_end - reader.position()));
        console::write(console::format_int(line_end) + " :\t", 'w');
        console::println(console::format_int(hash.value()), 'Y');
        console::reset_color();
    }
}

}  // namespace Ordalis
