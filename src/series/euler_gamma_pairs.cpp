#include "series/euler_gamma_pairs.h"

#include <algorithm>

#include "multiply/basecase/word_kernels.h"
#include "series/leaf_residue.h"

namespace qmp {

namespace {

// Adds c 2^shift to a number of which the words up to `end` are its own.
void add_shifted(Word* words, const Word* end, Word c, int shift) {
    const DoubleWord shifted = static_cast<DoubleWord>(c) << shift;
    const DoubleWord low = static_cast<DoubleWord>(words[0]) + low_word(shifted);
    words[0] = low_word(low);
    const DoubleWord high = static_cast<DoubleWord>(words[1]) + high_word(shifted) + high_word(low);
    words[1] = low_word(high);
    words += 2;
    add_carry(words, static_cast<std::uint64_t>(end - words), high_word(high) != 0);
}

void store(ExactFloat& x, std::uint64_t length, std::int64_t exp, std::uint64_t check) {
    x.T = x.base;
    x.L = length;
    while (x.T[x.L - 1] == 0) x.L--;
    x.exp = exp;
    x.hash = check_reduce(check);
}

}  // namespace

EulerGammaPairs::EulerGammaPairs(Word* P, Word* Q, Word* R, Word* S, std::int32_t exponent, std::uint64_t a)
    : p_(P), q_(Q), r_(R), s_(S), a_(a), square_of_n_(Word{1} << 2 * exponent), power_(exponent, a, a + 1) {
    p_[0] = 0;
    q_[0] = 1;
}

// The terms k and k + 1: Q = k (k + 1), P = 2 k + 1, and over n^(2k),
// R = (k + 1)^2 + n^2, S = (k + 1)^2 (1 + 1 / (k + 1)) + n^2.
void EulerGammaPairs::sum(std::uint64_t b, ExactFloat& P, ExactFloat& Q, ExactFloat& R, ExactFloat& S) {
    Word k = a_ + 1;
    for (; k < b; k += 2) {
        const Word next = k + 1;
        append({k * next, k + next, next * next + square_of_n_, next * (next + 1) + square_of_n_});
        power_.next_pair();
    }
    if (k == b) append({k, 1, 1, 1});
    store(P, pq_length_, 0, p_check_);
    store(Q, pq_length_, 0, q_check_);
    store(R, rs_length_, power_.exp(), r_check_);
    store(S, rs_length_, power_.exp(), s_check_);
}

// P = P Q1 + Q P1, Q = Q Q1, S = (S Q1 + R P1) Q1 + S1, R = R Q1^2 + R1.
void EulerGammaPairs::append(const Term& term) {
    using namespace leaf;
    multiply_pq(term.Q, term.P);
    multiply_rs(term.Q, term.P);
    add_power(term.R, term.S);

    const std::uint64_t w = residue(term.Q);
    p_check_ = residue_sum(p_check_, w, q_check_, term.P);
    q_check_ = residue_product(q_check_, w);
    s_check_ = residue_sum(residue_sum(s_check_, w, r_check_, term.P), w, residue(term.S), power_.residue());
    r_check_ = residue_sum(r_check_, residue_product(w, w), residue(term.R), power_.residue());
}

// w < 2^62 and v < 2^33 leave room for the sums of two products and a carry.
void EulerGammaPairs::multiply_pq(Word w, Word v) {
    p_[pq_length_] = q_[pq_length_] = 0;
    pq_length_++;
    Word q_carry = 0;
    Word p_carry = 0;
    for (std::uint64_t i = 0; i < pq_length_; i++) {
        const DoubleWord q = static_cast<DoubleWord>(q_[i]) * w + q_carry;
        const DoubleWord p =
            static_cast<DoubleWord>(p_[i]) * w + static_cast<DoubleWord>(q_[i]) * v + p_carry;
        q_[i] = low_word(q);
        q_carry = high_word(q);
        p_[i] = low_word(p);
        p_carry = high_word(p);
    }
    if ((p_[pq_length_ - 1] | q_[pq_length_ - 1]) == 0) pq_length_--;
}

// Both factors of w in one way through the words.
void EulerGammaPairs::multiply_rs(Word w, Word v) {
    for (int i = 0; i < 2; i++, rs_length_++) r_[rs_length_] = s_[rs_length_] = 0;
    Word r_carry = 0;
    Word r_carry_2 = 0;
    Word s_carry = 0;
    Word s_carry_2 = 0;
    for (std::uint64_t i = 0; i < rs_length_; i++) {
        const DoubleWord r = static_cast<DoubleWord>(r_[i]) * w + r_carry;
        const DoubleWord s =
            static_cast<DoubleWord>(s_[i]) * w + static_cast<DoubleWord>(r_[i]) * v + s_carry;
        const DoubleWord r_2 = static_cast<DoubleWord>(low_word(r)) * w + r_carry_2;
        const DoubleWord s_2 = static_cast<DoubleWord>(low_word(s)) * w + s_carry_2;
        r_[i] = low_word(r_2);
        s_[i] = low_word(s_2);
        r_carry = high_word(r);
        s_carry = high_word(s);
        r_carry_2 = high_word(r_2);
        s_carry_2 = high_word(s_2);
    }
}

void EulerGammaPairs::add_power(Word r, Word s) {
    const std::uint64_t offset = power_.bits() / 64;
    for (; rs_length_ < offset + 3; rs_length_++) r_[rs_length_] = s_[rs_length_] = 0;
    const int shift = static_cast<int>(power_.bits() % 64);
    add_shifted(r_ + offset, r_ + rs_length_, r, shift);
    add_shifted(s_ + offset, s_ + rs_length_, s, shift);
    while ((r_[rs_length_ - 1] | s_[rs_length_ - 1]) == 0) rs_length_--;
}

}  // namespace qmp
