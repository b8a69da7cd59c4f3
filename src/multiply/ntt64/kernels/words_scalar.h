// One word.
#pragma once

#include <cstdint>
#include <cstring>

#include "multiply/vectors/inline.h"

namespace {

struct WordsScalar {
    static constexpr int lanes = 1;
    using Words = std::uint64_t;
    __extension__ typedef unsigned __int128 DoubleWord;

    static KERNEL_INLINE Words load(const std::uint64_t* p) { return *p; }
    static KERNEL_INLINE void store(std::uint64_t* p, Words a) { *p = a; }
    static KERNEL_INLINE Words set(std::uint64_t a) { return a; }
    // Word l from `bytes` + l * stride.
    static KERNEL_INLINE Words gather(const unsigned char* bytes, std::uint64_t) {
        Words a;
        std::memcpy(&a, bytes, sizeof a);
        return a;
    }
    static KERNEL_INLINE Words add(Words a, Words b) { return a + b; }
    static KERNEL_INLINE Words sub(Words a, Words b) { return a - b; }
    static KERNEL_INLINE Words bit_and(Words a, Words b) { return a & b; }
    static KERNEL_INLINE Words min(Words a, Words b) { return a < b ? a : b; }
    static KERNEL_INLINE Words mul_low(Words a, Words b) { return a * b; }
    static KERNEL_INLINE Words mul_high(Words a, Words b) {
        return static_cast<Words>(static_cast<DoubleWord>(a) * b >> 64);
    }
    // `to`[8 i + j] = `from`[8 j + i], 8 x 8 words; never the same array.
    static KERNEL_INLINE void transpose(std::uint64_t* to, const std::uint64_t* from) {
        for (int i = 0; i < 8; ++i) {
            for (int j = 0; j < 8; ++j) to[8 * i + j] = from[8 * j + i];
        }
    }
};

}  // namespace
