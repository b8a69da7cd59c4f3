// Powers of a radix, held without their low zero words: words * 2^(64 zeros).
//
// 10^19 has 19 factors of two, so that three words in ten of its high powers are zero.
#pragma once

#include <cstdint>

#include "multiply/multiply_context.h"
#include "multiply/word.h"

namespace qmp {

struct RadixPower {
    Word* words;
    std::uint64_t length;  // words, the top one not zero
    std::uint64_t zeros;   // words left out below

    // Words of the power itself.
    std::uint64_t whole_length() const { return length + zeros; }
};

// log2(base), by which the sizes below are reckoned.
double base_bits(Word base);
// Most words that `digits` digits in a base of so many bits take.
std::uint64_t words_of_digits(double bits, std::uint64_t digits);

// Most words that base^exponent takes, with and without its low zero words. base >= 2.
std::uint64_t power_whole_words(Word base, std::uint64_t exponent);
std::uint64_t power_words(Word base, std::uint64_t exponent);
// The low zero words of base^exponent, exactly.
std::uint64_t power_zero_words(Word base, std::uint64_t exponent);
// Capacity in words that each buffer needs while base^exponent is formed.
std::uint64_t power_buffer_words(Word base, std::uint64_t exponent);

// The product words[0 .. length) * 2^(64 zeros), not zero, as a power: without a leading zero word and the
// low ones.
RadixPower stripped(Word* words, std::uint64_t length, std::uint64_t zeros);
// The square of p, in `destination` (2 p.length words), by a product of that size.
RadixPower square(const MultiplyContext& context, Word* destination, const RadixPower& p);
// p times one word, in place; needs one word more.
void multiply_by(ParallelContext parallel, RadixPower& p, Word w);

// base^exponent (exponent >= 1), by left-to-right binary exponentiation, in one of the two buffers, each of
// power_buffer_words(). The basecase form is for short results.
RadixPower form_power(const MultiplyContext& context, Word base, std::uint64_t exponent, Word* buffer,
                      Word* other);
RadixPower form_power_basecase(Word base, std::uint64_t exponent, Word* buffer, Word* other);

}  // namespace qmp
