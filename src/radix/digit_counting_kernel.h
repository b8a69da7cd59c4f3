// The counting of digit values, over a vector type of bytes. Included by one file per instruction set.
//
// A vector type V has: bytes (in a vector), load(), equal() (all ones, that is -1, where bytes are the same),
// subtract() and sum() (of all bytes, as unsigned numbers).
#pragma once

#include <cstdint>

namespace {

// A vector's byte counts up to so many occurrences.
constexpr std::uint64_t most_vectors = 255;

// counts[v] for the values First <= v < End; each vector is read once.
template <typename V, int First, int End>
void count_values(std::uint64_t* counts, const char* values, std::uint64_t vectors) {
    while (vectors > 0) {
        const std::uint64_t block = vectors < most_vectors ? vectors : most_vectors;
        typename V::Vector found[End - First];
        for (auto& v : found) v = V::zero();
        for (std::uint64_t i = 0; i < block; ++i) {
            const typename V::Vector digits = V::load(values + i * V::bytes);
#pragma GCC unroll 16
            for (int v = First; v < End; ++v) {
                found[v - First] = V::subtract(found[v - First], V::equal(digits, V::all(v)));
            }
        }
        for (int v = First; v < End; ++v) counts[v] += V::sum(found[v - First]);
        values += block * V::bytes;
        vectors -= block;
    }
}

// Counts whole vectors only and returns the number of values counted. Sixteen values at once are more than
// there are registers for.
template <typename V>
std::uint64_t count_vectors(std::uint64_t* counts, const char* values, std::uint64_t n, std::uint32_t radix) {
    const std::uint64_t vectors = n / V::bytes;
    if (radix == 10) {
        count_values<V, 0, 10>(counts, values, vectors);
    } else {
        count_values<V, 0, 8>(counts, values, vectors);
        count_values<V, 8, 16>(counts, values, vectors);
    }
    return vectors * V::bytes;
}

}  // namespace
