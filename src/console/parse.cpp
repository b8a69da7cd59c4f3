#include "console/parse.h"

#include <limits>

namespace qmp::console {
namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

std::uint64_t saturating_multiply(std::uint64_t a, std::uint64_t b) {
    std::uint64_t product;
    return __builtin_mul_overflow(a, b, &product) ? largest : product;
}

std::uint64_t saturating_add(std::uint64_t a, std::uint64_t b) {
    return a > largest - b ? largest : a + b;
}

std::int64_t with_sign(std::uint64_t value, bool negative) {
    constexpr auto top = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (negative)
        return value > top ? std::numeric_limits<std::int64_t>::min() : -static_cast<std::int64_t>(value);
    return static_cast<std::int64_t>(value > top ? top : value);
}

// Takes a leading '-' off the text.
bool take_sign(std::string_view& text) {
    if (text.empty() || text.front() != '-') return false;
    text.remove_prefix(1);
    return true;
}

// Takes the leading digits off the text; saturates, which is told in `fits`.
std::uint64_t take_digits(std::string_view& text, bool* fits = nullptr) {
    bool overflow = false;
    std::uint64_t value = 0;
    for (; !text.empty() && is_digit(text.front()); text.remove_prefix(1)) {
        overflow |= __builtin_mul_overflow(value, std::uint64_t{10}, &value);
        overflow |= __builtin_add_overflow(value, static_cast<std::uint64_t>(text.front() - '0'), &value);
    }
    if (fits) *fits = !overflow;
    return overflow ? largest : value;
}

// The digits after a decimal point, exactly: numerator / denominator, plus something smaller than any
// digit kept when `more` is set.
struct Fraction {
    std::uint64_t numerator = 0;
    std::uint64_t denominator = 1;
    bool more = false;
};

// Takes a '.' and the digits after it off the text.
Fraction take_fraction(std::string_view& text) {
    constexpr std::uint64_t largest_denominator = 10'000'000'000'000'000'000u;
    Fraction fraction;
    if (text.empty() || text.front() != '.') return fraction;
    text.remove_prefix(1);
    for (; !text.empty() && is_digit(text.front()); text.remove_prefix(1)) {
        const auto digit = static_cast<std::uint64_t>(text.front() - '0');
        if (fraction.denominator == largest_denominator) {
            fraction.more = fraction.more || digit != 0;
        } else {
            fraction.numerator = fraction.numerator * 10 + digit;
            fraction.denominator *= 10;
        }
    }
    return fraction;
}

// fraction * 2^exponent, rounded up. In integers: in floating point 0.25K would be 257 bytes or 256,
// depending on how the digits' weights round.
std::uint64_t scale_up(const Fraction& fraction, int exponent) {
    const auto scaled = static_cast<unsigned __int128>(fraction.numerator) << exponent;
    const auto whole = static_cast<std::uint64_t>(scaled / fraction.denominator);
    return whole + (scaled % fraction.denominator != 0 || fraction.more ? 1 : 0);
}

void skip_spaces(std::string_view& text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
}

char first_of(std::string_view text) {
    return text.empty() ? '\0' : text.front();
}

std::uint64_t decimal_suffix(char letter) {
    switch (letter) {
        case 'k':
        case 'K':
            return 1'000;
        case 'm':
        case 'M':
            return 1'000'000;
        case 'b':
        case 'B':
            return 1'000'000'000;
        case 't':
        case 'T':
            return 1'000'000'000'000;
        default:
            return 1;
    }
}

std::uint64_t keyboard_suffix(char letter) {
    switch (letter) {
        case 'm':
            return 1'000'000;
        case 'b':
            return 1'000'000'000;
        case 't':
            return 1'000'000'000'000;
        case 'K':
            return std::uint64_t{1} << 10;
        case 'M':
            return std::uint64_t{1} << 20;
        case 'G':
            return std::uint64_t{1} << 30;
        case 'T':
            return std::uint64_t{1} << 40;
        case 'P':
            return std::uint64_t{1} << 50;
        case 'E':
            return std::uint64_t{1} << 60;
        default:
            return 1;
    }
}

// A keyboard digit count without its sign; saturates, which is told in `fits`.
std::uint64_t take_digit_count(std::string_view text, bool* fits = nullptr) {
    bool overflow = false;
    std::uint64_t value = 0;
    for (; !text.empty() && (is_digit(text.front()) || text.front() == ','); text.remove_prefix(1)) {
        if (text.front() == ',') continue;
        overflow |= __builtin_mul_overflow(value, std::uint64_t{10}, &value);
        overflow |= __builtin_add_overflow(value, static_cast<std::uint64_t>(text.front() - '0'), &value);
    }
    skip_spaces(text);
    overflow |= __builtin_mul_overflow(value, keyboard_suffix(first_of(text)), &value);
    if (fits) *fits = !overflow;
    return overflow ? largest : value;
}

// The exponent of two of a byte unit, or 0.
int byte_unit_exponent(char letter) {
    switch (letter) {
        case 'k':
        case 'K':
            return 10;
        case 'm':
        case 'M':
            return 20;
        case 'g':
        case 'G':
            return 30;
        case 't':
        case 'T':
            return 40;
        case 'p':
        case 'P':
            return 50;
        case 'e':
        case 'E':
            return 60;
        default:
            return 0;
    }
}

}  // namespace

std::uint64_t parse_decimal(std::string_view text) {
    return take_digits(text);
}

std::optional<std::uint64_t> parse_decimal_that_fits(std::string_view text) {
    bool fits = true;
    const std::uint64_t value = take_digits(text, &fits);
    if (!fits) return std::nullopt;
    return value;
}

std::uint64_t parse_int_with_suffix(std::string_view text) {
    const std::uint64_t value = take_digits(text);
    return saturating_multiply(value, decimal_suffix(first_of(text)));
}

std::int64_t parse_signed_with_suffix(std::string_view text) {
    const bool negative = take_sign(text);
    return with_sign(parse_int_with_suffix(text), negative);
}

std::uint64_t parse_bytes(std::string_view text) {
    const std::uint64_t whole = take_digits(text);
    const Fraction fraction = take_fraction(text);
    skip_spaces(text);
    const int exponent = byte_unit_exponent(first_of(text));
    if (exponent == 0) return whole;
    const std::uint64_t unit = std::uint64_t{1} << exponent;
    return saturating_add(saturating_multiply(whole, unit), scale_up(fraction, exponent));
}

std::int64_t parse_signed(std::string_view text) {
    const bool negative = take_sign(text);
    return with_sign(take_digits(text), negative);
}

std::int64_t parse_digit_count(std::string_view text) {
    const bool negative = take_sign(text);
    return with_sign(take_digit_count(text), negative);
}

std::optional<std::uint64_t> parse_unsigned_digit_count(std::string_view text) {
    const bool negative = take_sign(text);
    bool fits = true;
    const std::uint64_t value = take_digit_count(text, &fits);
    if (!fits || (negative && value != 0)) return std::nullopt;
    return value;
}

}  // namespace qmp::console
