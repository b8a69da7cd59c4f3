#include "radix/digit_counts.h"

#include "console/console.h"

namespace qmp {
namespace {

constexpr double decimal_digits_per_word = 19.265919722494797;
constexpr double hexadecimal_per_decimal_digit = 0.8304820237218405;
constexpr double decimal_per_hexadecimal_digit = 1.2041199826559248;

std::uint64_t scaled(std::uint64_t count, double factor) {
    return static_cast<std::uint64_t>(static_cast<double>(count) * factor);
}

}  // namespace

std::uint64_t word_to_dec(std::uint64_t words) {
    if (words > word_to_dec_limit) console::fatal_error("word_to_dec(): Float-Indexing Limit Exceeded");
    return scaled(words, decimal_digits_per_word) + 1;
}

std::uint64_t dec_to_hex(std::uint64_t decimal_digits) {
    if (decimal_digits > digit_count_limit)
        console::fatal_error("dec_to_hex(): Float-Indexing Limit Exceeded");
    return scaled(decimal_digits, hexadecimal_per_decimal_digit) + 1;
}

std::uint64_t hex_to_dec(std::uint64_t hexadecimal_digits) {
    if (hexadecimal_digits > digit_count_limit) {
        console::fatal_error("hex_to_dec(): Float-Indexing Limit Exceeded");
    }
    return scaled(hexadecimal_digits, decimal_per_hexadecimal_digit);
}

}  // namespace qmp
