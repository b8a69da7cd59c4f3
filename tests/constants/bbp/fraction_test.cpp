// Fixed-point fractions: carries, lengths, digits.
#include "constants/bbp/fraction.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "errors/exception.h"

namespace kelvara::bbp {
namespace {

constexpr std::uint64_t all_ones = (std::uint64_t{1} << 48) - 1;

ChunkFraction of_chunks(const std::vector<std::uint64_t>& chunks) {
    ChunkFraction fraction(chunks.size() * 3 / 2);
    EXPECT_EQ(fraction.chunks(), chunks.size());
    std::vector<std::uint64_t> sums = chunks;
    fraction.take(sums, 1);
    return fraction;
}

std::string message_of(const auto& call) {
    try {
        call();
    } catch (const qmp::InvalidParametersException& e) {
        return e.message();
    }
    return "";
}

TEST(BbpFraction, ChunksHoldTheWords) {
    for (const auto& [words, chunks] : {std::pair{1, 2}, {2, 2}, {3, 2}, {4, 3}, {5, 4}, {6, 4}, {7, 5}}) {
        EXPECT_EQ(ChunkFraction(static_cast<std::uint64_t>(words)).chunks(),
                  static_cast<std::uint64_t>(chunks));
    }
}

TEST(BbpFraction, CarriesRunToTheTopAndAreLost) {
    ChunkFraction sum = of_chunks({all_ones, all_ones, all_ones, all_ones});
    sum.add(of_chunks({0, 0, 0, 1}));
    for (std::uint64_t i = 0; i < 4; ++i) EXPECT_EQ(sum.chunk(i), 0u);
}

TEST(BbpFraction, SumsOfLanesHaveSigns) {
    ChunkFraction sum(6);
    // Rows of two lanes: 0 - 1, 2^60 + 2^60, 5 - 5, -3 - 4.
    std::vector<std::uint64_t> sums = {0, ~0ull, 1ull << 60, 1ull << 60, 5, 0 - 5ull, 0 - 3ull, 0 - 4ull};
    sum.take(sums, 2);
    EXPECT_EQ(std::ranges::count(sums, 0u), 8);
    // -1 + 2^61 / 2^48, less what the last row borrows
    EXPECT_EQ(sum.chunk(0), 0x1ffeu);
    EXPECT_EQ(sum.chunk(1), all_ones);
    EXPECT_EQ(sum.chunk(2), all_ones);
    EXPECT_EQ(sum.chunk(3), all_ones - 6);
}

TEST(BbpFraction, DigitsOfAnyNumberOfWords) {
    const ChunkFraction sum = of_chunks({0x0123456789ab, 0xcdeffedcba98, 0x765432100f1e, 0x2d3c4b5a6978});
    const std::string digits = "0123456789ABCDEFFEDCBA98765432100F1E2D3C4B5A6978";
    for (std::uint64_t words = 2; words <= 6; ++words) {
        EXPECT_EQ(Fraction(sum, words).hexadecimal_digits(), digits.substr(0, 8 * words));
    }
}

TEST(BbpFraction, AddsAndSubtractsModuloOne) {
    const Fraction small(of_chunks({0, 1}), 3), large(of_chunks({all_ones, all_ones}), 3);
    Fraction sum(3);
    sum.add(large);
    EXPECT_EQ(sum.hexadecimal_digits(), std::string(24, 'F'));
    sum.add(small);
    EXPECT_EQ(sum.hexadecimal_digits(), std::string(24, '0'));
    sum.subtract(small);
    EXPECT_EQ(sum.hexadecimal_digits(), std::string(24, 'F'));
    sum.subtract(large);
    EXPECT_EQ(sum.hexadecimal_digits(), std::string(24, '0'));
}

TEST(BbpFraction, RefusesFewerThanTwoWords) {
    for (const std::uint64_t words : {0, 1}) {
        EXPECT_EQ(message_of([=] { Fraction fraction(words); }), "Length must be at least 2.");
        EXPECT_EQ(message_of([=] { Fraction fraction(ChunkFraction(words), words); }),
                  "Length must be at least 2.");
    }
    EXPECT_EQ(Fraction(2).size(), 2u);
}

TEST(BbpFraction, RefusesOtherLengths) {
    Fraction three(3);
    EXPECT_EQ(message_of([&] { three.add(Fraction(4)); }), "Lengths do not match.");
    EXPECT_EQ(message_of([&] { three.subtract(Fraction(2)); }), "Lengths do not match.");
}

}  // namespace
}  // namespace kelvara::bbp
