// The machine word that every number is made of: little-endian arrays in radix 2^64.
#pragma once

#include <cstdint>

namespace qmp {

using Word = std::uint64_t;
__extension__ typedef unsigned __int128 DoubleWord;

inline Word high_word(DoubleWord x) { return static_cast<Word>(x >> 64); }
inline Word low_word(DoubleWord x) { return static_cast<Word>(x); }

}  // namespace qmp
