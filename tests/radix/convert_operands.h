// What the conversion's tests convert, and how much of it.
#pragma once

#include <cstdint>
#include <vector>

#include "support/random_words.h"

namespace kelvara_test {

using Words = std::vector<qmp::Word>;

// Digit words without the guard word in front of them.
inline Words top(const Words& digits) {
    return Words(digits.begin() + 1, digits.end());
}

// Sizes around the basecase, around the edges of the levels, and larger ones.
inline std::vector<std::uint64_t> conversion_sizes() {
    std::vector<std::uint64_t> all;
    for (std::uint64_t m = 1; m <= 70; ++m) all.push_back(m);
    for (std::uint64_t m :
         {79, 80, 100, 127, 128, 129, 239, 240, 241, 255, 256, 257, 300, 511, 512, 513, 1000}) {
        all.push_back(m);
    }
    return all;
}

// Fractions of plausible and of nasty shapes, as long as the plan can use and a little longer and shorter.
inline std::vector<Words> conversion_fractions(Random& random, std::uint64_t words) {
    std::vector<Words> all;
    for (const auto pattern : all_patterns) all.push_back(make_words(random, words, pattern));
    all.push_back(make_words(random, words + 3));
    all.push_back(make_words(random, words > 5 ? words - 5 : 1));
    all.push_back(make_words(random, 1));
    Words small = make_words(random, words);
    for (std::uint64_t i = words / 2; i < words; ++i) small[i] = 0;
    all.push_back(small);
    return all;
}

}  // namespace kelvara_test
