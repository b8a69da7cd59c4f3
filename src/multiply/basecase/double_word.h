// The type twice as wide as a word, for each of the two word types.
#pragma once

#include <cstdint>

#include "multiply/word.h"

namespace qmp {

template <typename W>
struct WordTraits;

template <>
struct WordTraits<std::uint64_t> {
    using Double = DoubleWord;
    static constexpr std::uint32_t bits = 64;
};

template <>
struct WordTraits<std::uint32_t> {
    using Double = std::uint64_t;
    static constexpr std::uint32_t bits = 32;
};

template <typename W>
using DoubleOf = typename WordTraits<W>::Double;

}  // namespace qmp
