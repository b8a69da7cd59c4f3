// The word codecs over a type of wide vectors. Included by one file per instruction set.
//
// A type V has `words` (64-bit words in a vector), the usual operations on lanes, which stay within groups of
// 128 bits, and the few that move words across these groups:
//   interleave_halves   words k and k + words / 2 side by side; deinterleave_halves is its inverse
//   even_groups, odd_groups   every second group of two vectors
//   alternate           two groups in turn
//   lower_pairs, upper_pairs   of two vectors the lower, or upper, groups side by side
//   store_in_turn       32 bytes of one vector and of the other in turn, 19 bytes apart
//   load_every_second   half as many times 32 bytes, 38 bytes apart
//   factor16            a constant that stays a factor: shifts and sums in its place would take longer
//   sub_low_halves      the lower 32 bits of the differences
//   correct             of quotients and remainders: one more and so much less where the remainder is too
//   large quotient            floor(w / 10^8) or one less, for w < 10^19
#pragma once

#include <cstdint>

#include "multiply/vectors/inline.h"
#include "radix/word_codecs.h"

namespace {

using qmp::Word;
using qmp::radix::Order;

constexpr int ten_8 = 100000000;

template <typename V>
struct WideWordCodecs {
    using T = typename V::Vector;
    static constexpr std::uint64_t W = V::words;

    // W words in the order of their digits, of which the first stands at digits word i of n.
    template <Order order>
    static KERNEL_INLINE T load_words(const Word* words, std::uint64_t i, std::uint64_t n) {
        if constexpr (order == Order::number) return V::reverse_words(V::load(words + n - i - W));
        return V::load(words + i);
    }
    template <Order order>
    static KERNEL_INLINE void store_words(Word* words, std::uint64_t i, std::uint64_t n, T v) {
        if constexpr (order == Order::number) {
            V::store(words + n - i - W, V::reverse_words(v));
        } else {
            V::store(words + i, v);
        }
    }

    struct Pair {
        T first, second;
    };

    // A word as 10^16 head + 10^8 middle + low; middle and low in the halves of a lane.
    static KERNEL_INLINE Pair split(T w) {
        T q = V::quotient(w);
        // Below 2 10^8, so that the low halves tell it.
        T low = V::sub_low_halves(w, V::mul_low_halves(q, V::all64(ten_8)));
        V::correct(q, low, ten_8);
        // q / 10^8 = (q / 2^8) / 390625 for q < 10^11: x m / 2^48 with m = ceil(2^48 / 390625) is exact for
        // x 390625 < 2^48, and x < 10^11 / 2^8.
        const T head =
            V::template right64<48>(V::mul_low_halves(V::template right64<8>(q), V::all64(720575941)));
        const T middle = V::sub64(q, V::mul_low_halves(head, V::all64(ten_8)));
        return {head, V::bit_or(middle, V::template left64<32>(low))};
    }

    // The three digits of v < 1000, in the lowest bytes of each lane.
    static KERNEL_INLINE T head_bytes(T v) {
        const T hundreds = V::template right64<19>(V::mul_low_halves(v, V::all64(5243)));
        const T rest = V::sub64(v, V::mul_low_halves(hundreds, V::all64(100)));
        const T tens = V::template right64<10>(V::mul_low_halves(rest, V::all64(103)));
        const T ones = V::sub64(rest, V::mul_low_halves(tens, V::all64(10)));
        return V::bit_or(V::bit_or(hundreds, V::template left64<8>(tens)), V::template left64<16>(ones));
    }

    // Eight digits of each of the 32-bit lanes, which are below 10^8: those of the lower two lanes of every
    // group, and those of the upper two. Quotients are products with rounded-up reciprocals, exact over their
    // ranges: x / 10^4 for x < 10^8, x / 100 for x < 10^4, x / 10 for x < 100.
    static KERNEL_INLINE Pair decimal_bytes(T v) {
        const T reciprocal = V::all64(3518437209u);  // 2^45 / 10^4
        const T even = V::template right64<45>(V::mul_low_halves(v, reciprocal));
        const T odd = V::template right64<45>(V::mul_low_halves(V::template right64<32>(v), reciprocal));
        const T high = V::bit_or(even, V::template left64<32>(odd));
        const T low = V::sub16(v, V::mul_low16(high, V::factor16(10000)));
        const T fours = V::bit_or(high, V::template left32<16>(low));
        const T hundreds = V::template right16<3>(V::mul_high16(fours, V::all16(5243)));
        const T rest = V::sub16(fours, V::mul_low16(hundreds, V::factor16(100)));
        // tens + 256 (twos - 10 tens)
        const auto bytes = [](T twos) KERNEL_INLINE_LAMBDA {
            const T tens = V::mul_high16(twos, V::all16(6554));
            return V::sub16(V::template left16<8>(twos), V::mul_low16(tens, V::factor16(2559)));
        };
        return {bytes(V::unpack_low16(hundreds, rest)), bytes(V::unpack_high16(hundreds, rest))};
    }

    // The 19 digits of the words whose heads end the groups and whose tails fill them, 32 bytes each: 13
    // bytes behind the digits are written, too.
    struct Texts {
        T lower, upper;  // of the lower half of the groups, and of the upper
    };
    static KERNEL_INLINE Texts join(T head, T tail) {
        const T begin = V::template align_bytes<13>(tail, head);
        const T end = V::template right_bytes<13>(tail);
        return {V::lower_pairs(begin, end), V::upper_pairs(begin, end)};
    }

    template <bool text>
    static KERNEL_INLINE void unpack_decimal(char* digits, T words) {
        const Pair parts = split(words);
        const Pair tails = decimal_bytes(parts.second);
        const T zeros = V::all8(text ? '0' : 0);
        const T heads = V::add8(head_bytes(parts.first), zeros);
        const Texts even = join(V::template left_bytes<13>(heads), V::add8(tails.first, zeros));
        const Texts odd = join(V::template left_bytes<5>(heads), V::add8(tails.second, zeros));
        // In this order: the next word's digits overwrite what is behind those of one.
        V::store_in_turn(digits, even.lower, odd.lower);
        V::store_in_turn(digits + 19 * (W / 2), even.upper, odd.upper);
    }

    template <bool text, Order order>
    static void u64_to_decimal(char* digits, const Word* words, std::uint64_t n) {
        std::uint64_t i = 0;
        // What is written behind the last word's digits must be those of another word.
        for (; i + W < n; i += W, digits += 19 * W) {
            unpack_decimal<text>(digits, load_words<order>(words, i, n));
        }
        const auto& rest = qmp::radix::sse4_word_codecs();
        if constexpr (order == Order::number) {
            (text ? rest.u64_to_d19_text : rest.u64_to_d19)(digits, words, n - i);
        } else {
            (text ? rest.unpack_d19_text : rest.unpack_d19)(digits, words + i, n - i);
        }
    }

    // Half a vector of words from 32 bytes each, of which the first 19 count: 16 digits in one group, and the
    // last three in the next.
    static KERNEL_INLINE T half_of_words(const char* digits) {
        const T tens = V::alternate(_mm_set1_epi16(10 | 1 << 8), _mm_cvtsi32_si128(10 | 1 << 8 | 1 << 16));
        const T hundreds = V::alternate(_mm_set1_epi32(100 | 1 << 16), _mm_cvtsi32_si128(10 | 1 << 16));
        const T thousands = V::alternate(_mm_set1_epi32(10000 | 1 << 16), _mm_set1_epi64x(1));
        const auto fours = [&](const char* p) KERNEL_INLINE_LAMBDA {
            return V::multiply_add16(V::multiply_add8(V::load_every_second(p), tens), hundreds);
        };
        return V::multiply_add16(V::pack32(fours(digits), fours(digits + 19)), thousands);
    }

    template <Order order>
    static void decimal_to_u64(Word* words, const char* digits, std::uint64_t n) {
        std::uint64_t i = 0;
        // Up to 13 bytes behind the last word's digits are read, which must be those of another word.
        for (; i + W < n; i += W, digits += 19 * W) {
            const T a = half_of_words(digits);
            const T b = half_of_words(digits + 19 * (W / 2));
            const T eights = V::even_groups(a, b);
            const T last = V::odd_groups(a, b);
            const T sixteen =
                V::add64(V::mul_low_halves(eights, V::all64(ten_8)), V::template right64<32>(eights));
            // 1000 = 1024 - 16 - 8
            const T shifted =
                V::sub64(V::template left64<10>(sixteen),
                         V::add64(V::template left64<4>(sixteen), V::template left64<3>(sixteen)));
            store_words<order>(words, i, n, V::add64(shifted, last));
        }
        const auto& rest = qmp::radix::sse4_word_codecs();
        if constexpr (order == Order::number) {
            rest.d19_to_u64(words, digits, n - i);
        } else {
            rest.pack_d19(words + i, digits, n - i);
        }
    }

    template <bool text, Order order>
    static void u64_to_hexadecimal(char* digits, const Word* words, std::uint64_t n) {
        const T swap = V::every_group(_mm_setr_epi8(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8));
        const T characters = V::every_group(
            _mm_setr_epi8('0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'));
        const T mask = V::all8(0x0f);
        std::uint64_t i = 0;
        for (; i + W <= n; i += W, digits += 16 * W) {
            const T bytes = V::shuffle8(V::interleave_halves(load_words<order>(words, i, n)), swap);
            const T high = V::bit_and(V::template right16<4>(bytes), mask);
            const T low = V::bit_and(bytes, mask);
            const T first = V::unpack_low8(high, low);
            const T second = V::unpack_high8(high, low);
            V::store(digits, text ? V::shuffle8(characters, first) : first);
            V::store(digits + 8 * W, text ? V::shuffle8(characters, second) : second);
        }
        const auto& rest = qmp::radix::sse4_word_codecs();
        if constexpr (order == Order::number) {
            (text ? rest.u64_to_h16_text : rest.u64_to_h16)(digits, words, n - i);
        } else {
            (text ? rest.unpack_h16_text : rest.unpack_h16)(digits, words + i, n - i);
        }
    }

    template <Order order>
    static void hexadecimal_to_u64(Word* words, const char* digits, std::uint64_t n) {
        const T swap = V::every_group(_mm_setr_epi8(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8));
        const T sixteens = V::all16(16 | 1 << 8);
        std::uint64_t i = 0;
        for (; i + W <= n; i += W, digits += 16 * W) {
            const T first = V::multiply_add8(V::load(digits), sixteens);
            const T second = V::multiply_add8(V::load(digits + 8 * W), sixteens);
            const T bytes = V::shuffle8(V::pack16(first, second), swap);
            store_words<order>(words, i, n, V::deinterleave_halves(bytes));
        }
        const auto& rest = qmp::radix::sse4_word_codecs();
        if constexpr (order == Order::number) {
            rest.h16_to_u64(words, digits, n - i);
        } else {
            rest.pack_h16(words + i, digits, n - i);
        }
    }

    // Those of 32-bit words are the ones of the level below.
    static qmp::radix::WordCodecs table(const char* level) {
        qmp::radix::WordCodecs codecs = qmp::radix::sse4_word_codecs();
        codecs.level = level;
        codecs.u64_to_d19 = u64_to_decimal<false, Order::number>;
        codecs.u64_to_d19_text = u64_to_decimal<true, Order::number>;
        codecs.u64_to_h16 = u64_to_hexadecimal<false, Order::number>;
        codecs.u64_to_h16_text = u64_to_hexadecimal<true, Order::number>;
        codecs.d19_to_u64 = decimal_to_u64<Order::number>;
        codecs.h16_to_u64 = hexadecimal_to_u64<Order::number>;
        codecs.unpack_d19 = u64_to_decimal<false, Order::file>;
        codecs.unpack_d19_text = u64_to_decimal<true, Order::file>;
        codecs.unpack_h16 = u64_to_hexadecimal<false, Order::file>;
        codecs.unpack_h16_text = u64_to_hexadecimal<true, Order::file>;
        codecs.pack_d19 = decimal_to_u64<Order::file>;
        codecs.pack_h16 = hexadecimal_to_u64<Order::file>;
        return codecs;
    }
};

}  // namespace
