// Arithmetic modulo 2^N + 1, N a multiple of 128, sequential.
//
// A residue is N / 64 words and a carry word; it is between 0 and 2^N, so that the carry word is 0, or 1
// above zeros. Roots of unity are powers of the square root of 2, 2^(3N/4) - 2^(N/4), of order 4 N: even
// powers are shifts.
#pragma once

#include <cstdint>

#include "multiply/word.h"

namespace qmp::hybrid_ntt {

class Ring {
  public:
    // `words` = N / 64
    explicit Ring(std::uint64_t words) : words_(words) {}

    std::uint64_t words() const { return words_; }
    std::uint64_t residue_words() const { return words_ + 1; }
    std::uint64_t bits() const { return 64 * words_; }

    // sum may be a, difference may be b.
    void add(Word* sum, const Word* a, const Word* b) const;
    void sub(Word* difference, const Word* a, const Word* b) const;
    // result = x 2^shift, shift < 2 N; another place than x.
    void shift_left(Word* result, const Word* x, std::uint64_t shift) const;
    // result = x sqrt(2)^exponent, exponent < 4 N; another place than x and `spare`, a residue.
    void multiply_by_root(Word* result, const Word* x, std::uint64_t exponent, Word* spare) const;
    // residue = product, of 2 N bits.
    void reduce(Word* residue, const Word* product) const;
    void negate(Word* residue) const;

  private:
    // Takes a small number from the body, whose carry word is overwritten.
    void normalise(Word* residue, std::int64_t surplus) const;
    std::uint64_t words_;
};

}  // namespace qmp::hybrid_ntt
