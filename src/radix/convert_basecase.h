// Conversion of a short fraction, one word of the result at a time.
#pragma once

#include <cstdint>

#include "multiply/word.h"

namespace qmp {

// Digit words below which a conversion is the basecase's; the fastest lengths.
constexpr std::uint64_t convert_basecase_words = 16;

// Writes the first m base-B words of the fraction 0.f, the most significant first, downward from
// `destination_top` (one past it: the words are destination_top[-1] to destination_top[-m]), and returns the
// next one, the guard word. `fraction` is little-endian with the point above its top word. Only its top
// m + 2 words are looked at, so that the guard word may be one short.
//
// `work` holds min(m + 2, fraction_words) words. The ranges do not overlap.
Word convert_basecase(Word base, Word* destination_top, std::uint64_t m, const Word* fraction,
                      std::uint64_t fraction_words, Word* work);

}  // namespace qmp
