// The counting of digit values, over a vector type of bytes. Included by one file per instruction set.
//
// A vector type V has: bytes (in a vector), all(), every_group() (16 bytes, repeated), load(), select() (of
// every 16 bytes those that an index names; 0 where the index has its highest bit set), add_saturated(),
// add(), high_halves() and low_halves() (of each byte, as numbers), and sum() (of all bytes, as unsigned
// numbers).
#pragma once

#include <cstdint>

namespace {

// Half a byte counts up to so many occurrences, and a byte.
constexpr std::uint64_t most_in_halves = 15;
constexpr std::uint64_t most_in_bytes = 255;

// counts[v] for the values First <= v < End, an even number of them; each vector is read once. A vector's
// digits select from a table that has 1 for one value, 16 for the next and 0 for all others, so that a byte
// counts two values at once.
template <typename V, int First, int End>
void count_values(std::uint64_t* counts, const char* values, std::uint64_t vectors) {
    constexpr int pairs = (End - First) / 2;
    typename V::Vector tables[pairs];
    for (int i = 0; i < pairs; ++i) {
        char table[16] = {};
        table[First + 2 * i] = 1;
        table[First + 2 * i + 1] = 16;
        tables[i] = V::every_group(table);
    }
    // Values from 16 on get their highest bit set, and the others keep their lower halves.
    const typename V::Vector bias = V::all(0x70);
    while (vectors > 0) {
        typename V::Vector found[End - First];
        for (auto& v : found) v = V::all(0);
        for (std::uint64_t block = 0; block < most_in_bytes / most_in_halves && vectors > 0; ++block) {
            const std::uint64_t count = vectors < most_in_halves ? vectors : most_in_halves;
            typename V::Vector halves[pairs];
            for (auto& v : halves) v = V::all(0);
            for (std::uint64_t i = 0; i < count; ++i) {
                const typename V::Vector digits = V::add_saturated(V::load(values + i * V::bytes), bias);
#pragma GCC unroll 8
                for (int k = 0; k < pairs; ++k) halves[k] = V::add(halves[k], V::select(tables[k], digits));
            }
#pragma GCC unroll 8
            for (int k = 0; k < pairs; ++k) {
                found[2 * k] = V::add(found[2 * k], V::low_halves(halves[k]));
                found[2 * k + 1] = V::add(found[2 * k + 1], V::high_halves(halves[k]));
            }
            values += count * V::bytes;
            vectors -= count;
        }
        for (int v = First; v < End; ++v) counts[v] += V::sum(found[v - First]);
    }
}

// Counts whole vectors only and returns the number of values counted.
template <typename V>
std::uint64_t count_vectors(std::uint64_t* counts, const char* values, std::uint64_t n, std::uint32_t radix) {
    const std::uint64_t vectors = n / V::bytes;
    if (radix == 10) {
        count_values<V, 0, 10>(counts, values, vectors);
    } else {
        count_values<V, 0, 16>(counts, values, vectors);
    }
    return vectors * V::bytes;
}

}  // namespace
