#include "radix/convert_basecase.h"

#include <algorithm>
#include <array>
#include <utility>

#include "multiply/basecase/word_kernels.h"

namespace qmp {
namespace {

// m digit words and the guard word are m + 1 products of the fraction by the base, of which each carries out
// the next word and, after the first, is shorter by the lowest word: word i takes part in the first i + 1
// products, the two topmost in all. Here a word goes through all of its products before the next word
// begins, so that the carries between words, which become the digits, stay in registers and the products of
// neighbouring words overlap.
template <std::uint64_t Products>
inline __attribute__((always_inline)) void take_word(Word base, Word w, Word* carries) {
#pragma GCC unroll 16
    for (std::uint64_t k = 0; k < Products; ++k) {
        const DoubleWord product = static_cast<DoubleWord>(w) * base + carries[k];
        w = low_word(product);
        carries[k] = high_word(product);
    }
}

template <std::uint64_t M, std::uint64_t... I>
inline __attribute__((always_inline)) void take_words(Word base, const Word* f, Word* carries,
                                                      std::integer_sequence<std::uint64_t, I...>) {
    (take_word<I + 1>(base, f[I], carries), ...);
    take_word<M + 1>(base, f[M + 1], carries);
}

// f has M + 2 words.
template <std::uint64_t M>
Word convert_words(Word base, Word* destination_top, const Word* f) {
    Word carries[M + 1] = {};
    take_words<M>(base, f, carries, std::make_integer_sequence<std::uint64_t, M + 1>());
    for (std::uint64_t k = 0; k < M; ++k) *--destination_top = carries[k];
    return carries[M];
}

using ConvertWords = Word (*)(Word, Word*, const Word*);

template <std::uint64_t... M>
constexpr std::array<ConvertWords, sizeof...(M)> all_lengths(std::integer_sequence<std::uint64_t, M...>) {
    return {convert_words<M>...};
}

constexpr auto convert_words_of =
    all_lengths(std::make_integer_sequence<std::uint64_t, convert_basecase_words>());

// One product after the other, for any length.
Word convert_stepwise(Word base, Word* destination_top, std::uint64_t m, const Word* f, std::uint64_t length,
                      Word* work) {
    std::copy_n(f, length, work);
    for (std::uint64_t left = m; left > 0;) {
        *--destination_top = mul_word(work, work, length, base);
        // What is left needs one word of fraction for each of its words, and two below.
        if (length > --left + 2) {
            ++work;
            --length;
        }
    }
    return mul_word(work, work, length, base);
}

}  // namespace

Word convert_basecase(Word base, Word* destination_top, std::uint64_t m, const Word* fraction,
                      std::uint64_t fraction_words, Word* work) {
    const std::uint64_t length = std::min(m + 2, fraction_words);
    fraction += fraction_words - length;
    if (m >= convert_basecase_words) {
        return convert_stepwise(base, destination_top, m, fraction, length, work);
    }
    if (length == m + 2) return convert_words_of[m](base, destination_top, fraction);
    // Zero words below stay zero.
    Word padded[convert_basecase_words + 1] = {};
    std::copy_n(fraction, length, padded + (m + 2 - length));
    return convert_words_of[m](base, destination_top, padded);
}

}  // namespace qmp
