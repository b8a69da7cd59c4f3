// The leaves of the Brent-McMillan sums two terms at a time, while a pair's factors are words.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "numbers/exact_float.h"

namespace qmp {

// The bits of n^(2k), for the terms of one leaf: above those of the leaf's exponent, and modulo the 61 bits
// of a check value.
class EulerGammaPowers {
  public:
    EulerGammaPowers(std::int32_t exponent, std::uint64_t a, std::uint64_t b) : step_(2 * exponent) {
        const auto first = static_cast<std::int64_t>(a + 1);
        const auto last = static_cast<std::int64_t>(b);
        exp_ = (step_ * (step_ < 0 ? last : first)) >> 6;
        bits_ = step_ * first;
        residue_bits_ = static_cast<int>((bits_ % 61 + 61) % 61);
        residue_step_ = static_cast<int>((step_ + 122) % 61);
    }
    // Of all of them, in words.
    std::int64_t exp() const { return exp_; }
    std::uint64_t bits() const { return static_cast<std::uint64_t>(bits_ - 64 * exp_); }
    std::uint64_t residue() const { return std::uint64_t{1} << residue_bits_; }
    void next() {
        bits_ += step_;
        residue_bits_ = (residue_bits_ + residue_step_) % 61;
    }
    void next_pair() {
        next();
        next();
    }

  private:
    std::int64_t step_;
    std::int64_t exp_;
    std::int64_t bits_;
    int residue_bits_;
    int residue_step_;
};

// Whether the range's terms may be summed in pairs: n = 2^exponent and the indices up to b are below 2^31.
inline bool sum_in_pairs(std::int32_t exponent, std::uint64_t b) {
    return exponent >= 0 && exponent < 31 && b < (std::uint64_t{1} << 31);
}

// The sums over a range that grows by two terms, or by one. P and Q are kept at one length, R and S at
// another: their top words may be zero.
class EulerGammaPairs {
  public:
    // Over (a, b] with `sum`. The buffers hold two words more than what any of the sums takes.
    EulerGammaPairs(Word* P, Word* Q, Word* R, Word* S, std::int32_t exponent, std::uint64_t a);
    void sum(std::uint64_t b, ExactFloat& P, ExactFloat& Q, ExactFloat& R, ExactFloat& S);

  private:
    // The one or two terms behind those summed: what Q, P, and without n^(2k) R and S, are over them alone.
    struct Term {
        Word Q, P, R, S;
    };
    void append(const Term& term);
    void multiply_pq(Word w, Word v);
    void multiply_rs(Word w, Word v);
    // To both R and S.
    void add_power(Word r, Word s);

    Word* p_;
    Word* q_;
    Word* r_;
    Word* s_;
    std::uint64_t pq_length_ = 1;
    std::uint64_t rs_length_ = 0;
    std::uint64_t a_;
    Word square_of_n_;
    EulerGammaPowers power_;
    std::uint64_t p_check_ = 0;
    std::uint64_t q_check_ = 1;
    std::uint64_t r_check_ = 0;
    std::uint64_t s_check_ = 0;
};

}  // namespace qmp
