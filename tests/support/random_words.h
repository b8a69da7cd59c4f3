// Test operands: reproducible random words, with the patterns that break carries and rounding.
#pragma once

#include <cstdint>
#include <vector>

#include "multiply/word.h"

namespace kelvara_test {

// The seed of this run: fixed, or KELVARA_TEST_SEED from the environment; printed once by the test main.
std::uint64_t seed();
// Multiplies iteration counts: KELVARA_TEST_MULTIPLIER from the environment, 1 by default.
std::uint64_t multiplier();

// A small, fast generator (splitmix64).
class Random {
  public:
    explicit Random(std::uint64_t salt = 0) : state_(seed() + 0x9e3779b97f4a7c15 * (salt + 1)) {}
    std::uint64_t next() {
        std::uint64_t z = (state_ += 0x9e3779b97f4a7c15);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
        z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
        return z ^ (z >> 31);
    }
    // In [low, high].
    std::uint64_t between(std::uint64_t low, std::uint64_t high) { return low + next() % (high - low + 1); }

  private:
    std::uint64_t state_;
};

enum class Pattern { uniform, runs, ones, zeros_then_one, sparse };
constexpr Pattern all_patterns[] = {Pattern::uniform, Pattern::runs, Pattern::ones, Pattern::zeros_then_one,
                                    Pattern::sparse};

// n words with a non-zero top word.
std::vector<qmp::Word> make_words(Random& random, std::uint64_t n, Pattern pattern = Pattern::uniform);
// Fills an output buffer with garbage, so that a test sees every word that was not written.
void fill_garbage(qmp::Word* words, std::uint64_t n);
constexpr qmp::Word garbage = 0xdeadbeefcafef00d;

}  // namespace kelvara_test
