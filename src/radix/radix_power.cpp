#include "radix/radix_power.h"

#include <bit>
#include <cmath>
#include <utility>

#include "multiply/basecase/schoolbook.h"
#include "multiply/multiply.h"
#include "numbers/word_multiply.h"

namespace qmp {
namespace {

// floor(bits / 64) + 1, with a margin far above a double's error and far below a word.
std::uint64_t words_of(double bits) {
    return static_cast<std::uint64_t>(bits * (1 + 1e-13) / 64 + 1e-6) + 1;
}

// The exponent's bits below its top one, from the top down: square(), then one more factor for a one.
template <typename Square>
RadixPower exponentiate(ParallelContext parallel, Word base, std::uint64_t exponent, Word* buffer,
                        Word* other, Square square_into) {
    *buffer = base;
    RadixPower power{buffer, 1, 0};
    for (int bit = std::bit_width(exponent) - 2; bit >= 0; --bit) {
        power = square_into(other, power);
        std::swap(buffer, other);
        if (exponent >> bit & 1) {
            multiply_by(parallel, power, base);
            power = stripped(power.words, power.length, power.zeros);
        }
    }
    return power;
}

}  // namespace

double base_bits(Word base) {
    return std::log2(static_cast<double>(base));
}

std::uint64_t words_of_digits(double bits, std::uint64_t digits) {
    return words_of(static_cast<double>(digits) * bits);
}

std::uint64_t power_whole_words(Word base, std::uint64_t exponent) {
    return words_of_digits(base_bits(base), exponent);
}

std::uint64_t power_words(Word base, std::uint64_t exponent) {
    const double zero_bits = std::countr_zero(base);
    // Zero bits are left out by whole words only.
    return words_of(static_cast<double>(exponent) * (base_bits(base) - zero_bits) + 63);
}

std::uint64_t power_zero_words(Word base, std::uint64_t exponent) {
    return exponent * static_cast<std::uint64_t>(std::countr_zero(base)) / 64;
}

std::uint64_t power_buffer_words(Word base, std::uint64_t exponent) {
    // The square of what was before, and the top word of a product with one more digit.
    return 2 * power_words(base, exponent / 2) + 2;
}

RadixPower stripped(Word* words, std::uint64_t length, std::uint64_t zeros) {
    if (words[length - 1] == 0) --length;  // a product may be one word short of its factors' lengths
    while (*words == 0) {
        ++words;
        --length;
        ++zeros;
    }
    return {words, length, zeros};
}

RadixPower square(const MultiplyContext& context, Word* destination, const RadixPower& p) {
    square_upper(context, destination, 0, 2 * p.length, p.words, p.length);
    return stripped(destination, 2 * p.length, 2 * p.zeros);
}

void multiply_by(ParallelContext parallel, RadixPower& p, Word w) {
    const Word carry = multiply_by_word(parallel, p.words, p.words, p.length, w);
    if (carry) p.words[p.length++] = carry;
}

RadixPower form_power(const MultiplyContext& context, Word base, std::uint64_t exponent, Word* buffer,
                      Word* other) {
    return exponentiate(context, base, exponent, buffer, other, [&](Word* destination, const RadixPower& p) {
        return square(context, destination, p);
    });
}

RadixPower form_power_basecase(Word base, std::uint64_t exponent, Word* buffer, Word* other) {
    const auto square_into = [](Word* destination, const RadixPower& p) {
        mulB(destination, p.words, p.length, p.words, p.length);
        return stripped(destination, 2 * p.length, 2 * p.zeros);
    };
    return exponentiate(ParallelContext::sequential(), base, exponent, buffer, other, square_into);
}

}  // namespace qmp
