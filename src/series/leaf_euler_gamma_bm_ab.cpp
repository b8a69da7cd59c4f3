#include "series/leaf_euler_gamma_bm_ab.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "errors/check.h"
#include "multiply/basecase/word_kernels.h"
#include "numbers/check_value.h"
#include "series/euler_gamma_pairs.h"
#include "series/leaf_residue.h"

namespace qmp {

namespace {

// Term by term, for any n and any index.

// An integer that grows in a buffer; its top word is not zero.
class Growing {
  public:
    explicit Growing(Word* words) : words_(words) {}

    void set_one() {
        words_[0] = 1;
        length_ = 1;
    }
    void multiply(Word w) {
        const Word carry = mul_word(words_, words_, length_, w);
        if (carry != 0) words_[length_++] = carry;
    }
    // Times w, and x added.
    void multiply_add(Word w, const Growing& x) {
        Word carry = 0;
        std::uint64_t i = 0;
        for (; i < std::min(length_, x.length_); i++) {
            const DoubleWord sum = static_cast<DoubleWord>(words_[i]) * w + x.words_[i] + carry;
            words_[i] = low_word(sum);
            carry = high_word(sum);
        }
        for (; i < length_; i++) {
            const DoubleWord sum = static_cast<DoubleWord>(words_[i]) * w + carry;
            words_[i] = low_word(sum);
            carry = high_word(sum);
        }
        for (; i < x.length_; i++) {
            const DoubleWord sum = static_cast<DoubleWord>(x.words_[i]) + carry;
            words_[i] = low_word(sum);
            carry = high_word(sum);
        }
        length_ = i;
        if (carry != 0) words_[length_++] = carry;
    }
    // Times k^2.
    void multiply_square(Word k) {
        if (k >> 32 == 0) return multiply(k * k);
        multiply(k);
        multiply(k);
    }
    void add_bit(std::uint64_t bit) {
        extend(bit / 64 + 1);
        const Word w = Word{1} << bit % 64;
        const Word before = words_[bit / 64];
        words_[bit / 64] = before + w;
        propagate(bit / 64 + 1, words_[bit / 64] < before);
    }

    void store(ExactFloat& x, std::int64_t exp, std::uint64_t check) const {
        x.T = x.base;
        x.L = length_;
        x.exp = exp;
        x.hash = check_reduce(check);
    }

  private:
    void extend(std::uint64_t length) {
        if (length <= length_) return;
        std::fill(words_ + length_, words_ + length, Word{0});
        length_ = length;
    }
    void propagate(std::uint64_t from, Word carry) {
        if (carry != 0 && add_carry(words_ + from, length_ - from, true)) words_[length_++] = 1;
        while (words_[length_ - 1] == 0) length_--;
    }

    Word* words_;
    std::uint64_t length_ = 0;
};

void sum_term_by_term(ExactFloat& P, ExactFloat& Q, ExactFloat& R, ExactFloat& S, std::int32_t exponent,
                      std::uint64_t a, std::uint64_t b) {
    Growing p(P.base);
    Growing q(Q.base);
    Growing r(R.base);
    Growing s(S.base);
    EulerGammaPowers power(exponent, a, b);
    q.set_one();
    std::uint64_t p_check = 0;
    std::uint64_t q_check = 1;
    std::uint64_t r_check = 0;
    std::uint64_t s_check = 0;
    for (std::uint64_t k = a + 1; k <= b; k++, power.next()) {
        // P = P k + Q, Q = Q k, S = (S k + R) k + n^(2k), R = R k^2 + n^(2k).
        using namespace leaf;
        p.multiply_add(k, q);
        q.multiply(k);
        s.multiply_add(k, r);
        s.multiply(k);
        s.add_bit(power.bits());
        r.multiply_square(k);
        r.add_bit(power.bits());

        const std::uint64_t factor = residue(k);
        const std::uint64_t square = residue_product(factor, factor);
        p_check = residue_sum(p_check, factor, q_check, 1);
        q_check = residue_product(q_check, factor);
        s_check = residue_sum(s_check, square, r_check, factor);
        s_check = residue_sum(s_check, 1, power.residue(), 1);
        r_check = residue_sum(r_check, square, power.residue(), 1);
    }
    p.store(P, 0, p_check);
    q.store(Q, 0, q_check);
    r.store(R, power.exp(), r_check);
    s.store(S, power.exp(), s_check);
}

}  // namespace

std::uint64_t euler_gamma_leaf_words(std::int32_t exponent, std::uint64_t a, std::uint64_t b) {
    // A summand is n^(2k), its bits counted from a whole word, times two factors of at most b for each term
    // behind it, times 1 + H_b - H_k, which is at most b - a. There are b - a of them.
    const std::uint64_t terms = b - a;
    const auto factor_bits = static_cast<std::uint64_t>(std::bit_width(b));
    const std::uint64_t term_bits = 2 * std::max(factor_bits, static_cast<std::uint64_t>(std::abs(exponent)));
    const std::uint64_t bits =
        64 + (terms - 1) * term_bits + 2 * static_cast<std::uint64_t>(std::bit_width(terms));
    return bits / 64 + 1;
}

void EulerGamma_BM_AB_BSR_End(ExactFloat& P, ExactFloat& Q, ExactFloat& R, ExactFloat& S,
                              std::int32_t exponent, std::uint64_t a, std::uint64_t b) {
    const std::uint64_t capacity = euler_gamma_leaf_words(exponent, a, b) + euler_gamma_leaf_spare_words;
    for (const ExactFloat* x : {&P, &Q, &R, &S}) {
        require_capacity("EulerGamma_BM_AB_BSR_End()", x->AL, capacity);
    }
    if (sum_in_pairs(exponent, b)) {
        EulerGammaPairs(P.base, Q.base, R.base, S.base, exponent, a).sum(b, P, Q, R, S);
    } else {
        sum_term_by_term(P, Q, R, S, exponent, a, b);
    }
}

}  // namespace qmp
