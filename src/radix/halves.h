// Joining the two halves of converted digits at the word in which they overlap.
#pragma once

#include <cstdint>

#include "multiply/word.h"

namespace qmp {

// What joined or converted digits are followed by, and whether they are right. A mismatch keeps its first
// place: who found it, in a node of how many digit words, and the two words that do not fit.
struct ConvertResult {
    Word guard = 0;  // the next digit word, at most one short
    std::uint32_t status = 0;
    const char* function = nullptr;
    std::uint64_t m = 0;
    Word expected = 0;
    Word actual = 0;
};

constexpr std::uint32_t overlap_mismatch = 0x10000002;

// A place to see two converted halves before they are joined, and to interfere, so that tests can show what
// comes of halves that do not fit. `top` is one past the most significant of the high half's s words. Called
// on whatever thread joins them.
class ConvertHooks {
  public:
    virtual ~ConvertHooks() = default;
    virtual void halves(Word* /*top*/, std::uint64_t /*s*/, std::uint64_t /*low_m*/, ConvertResult& /*high*/,
                        ConvertResult& /*low*/) {}
};

// `top` is one past the most significant of s + low_m digit words in base B: the high half's s words, then
// the low half's. `high_guard` is the high half's guard word, which announces the low half's top word t;
// `low_guard` is changed where a carry passes through it. False when the halves do not fit.
//
// Both halves are truncated, the high one at an earlier word. Equal words, or words that differ by 1, fit.
// With high_guard = B - 1 and t = 0 the high half lost a carry that the low half, which looks further, has in
// full: the carry is put into the high half. With high_guard = 0 and t = B - 1 the low half lies just below
// the boundary that the high half has reached: its words B - 1 become 0. Either way the digits are those of
// the half that is right, so that they agree with the binary value to the last word.
bool join_halves(Word base, Word* top, std::uint64_t s, std::uint64_t low_m, Word high_guard,
                 Word& low_guard);

}  // namespace qmp
