// Numbers modulo 1 in fixed point, in the two shapes that the digit extractor needs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "constants/bbp/kernels/kernels.h"

namespace kelvara::bbp {

// Digits of 48 bits, the most significant first: what terms are added up in.
class ChunkFraction {
  public:
    // For so many words of 32 bits: as many chunks as hold them, at least 2.
    explicit ChunkFraction(std::uint64_t words);

    std::uint64_t chunks() const { return chunks_.size(); }
    std::uint64_t chunk(std::uint64_t i) const { return chunks_[i]; }

    // Adds the sums of a kernel, rows of `lanes` signed integers of at most 62 bits in all, and sets them to
    // 0.
    void take(std::vector<std::uint64_t>& sums, std::uint64_t lanes);
    // Adds another of the same length.
    void add(const ChunkFraction& other);

  private:
    std::vector<std::uint64_t> chunks_;
};

// Words of 32 bits, the most significant first: the accumulator. InvalidParametersException for a length
// below 2 and for operands of different lengths.
class Fraction {
  public:
    explicit Fraction(std::uint64_t words);
    // The leading words of a sum of terms.
    Fraction(const ChunkFraction& sum, std::uint64_t words);

    std::uint64_t size() const { return words_.size(); }
    void add(const Fraction& other);
    void subtract(const Fraction& other);

    // 8 upper-case digits a word.
    std::string hexadecimal_digits() const;

  private:
    void check_length(const Fraction& other) const;

    std::vector<std::uint32_t> words_;
};

}  // namespace kelvara::bbp
