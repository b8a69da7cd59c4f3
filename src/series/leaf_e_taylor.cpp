#include "series/leaf_e_taylor.h"

#include <algorithm>
#include <bit>

#include "errors/check.h"
#include "multiply/basecase/word_kernels.h"
#include "numbers/check_value.h"
#include "series/leaf_residue.h"

namespace qmp {

namespace {

// Leaves of this many terms are halved once more.
constexpr std::uint64_t halved_leaf = 8;
// Half a leaf holds at most eight terms, a word each; the merge of its halves takes one more for carries.
constexpr std::uint64_t half_leaf_words = 17;

// How many terms up to index b have a denominator of one word.
std::uint64_t terms_per_word(std::uint64_t b) {
    return 64 / static_cast<std::uint64_t>(std::bit_width(b));
}

// The sum of terms whose denominator fits one word, from index k on. The check values go from term to term.
template <bool alternating>
struct WordSum {
    Word P = 1;
    Word Q;
    std::uint64_t p_check = 1;
    std::uint64_t q_check;

    WordSum(std::uint64_t k, std::uint64_t terms) : Q(k), q_check(leaf::residue(k)) {
        for (std::uint64_t i = 1; i < terms; i++) {
            const std::uint64_t factor = k + i;
            const bool minus = alternating && i % 2 == 1;
            P = P * factor + (minus ? ~Word{0} : Word{1});
            Q *= factor;
            const std::uint64_t check = leaf::residue(factor);
            p_check = leaf::residue_sum(p_check, check, 1, minus ? check_modulus - 1 : 1);
            q_check = leaf::residue_product(q_check, check);
        }
    }
};

// P and Q of a range that grows at its end, both of L words.
template <bool alternating>
class RangeSum {
  public:
    RangeSum(Word* P, Word* Q, std::uint64_t a, std::uint64_t b) : P_(P), Q_(Q) {
        const std::uint64_t at_once = terms_per_word(b);
        std::uint64_t terms = std::min(at_once, b - a);
        start(WordSum<alternating>(a + 1, terms));
        for (std::uint64_t done = terms; done < b - a; done += terms) {
            terms = std::min(at_once, b - a - done);
            append(WordSum<alternating>(a + done + 1, terms), alternating && done % 2 == 1);
        }
    }

    void store(BasicInt& P, BasicInt& Q) const {
        P.L = Q.L = L_;
        while (P.T[P.L - 1] == 0) P.L--;
        while (Q.T[Q.L - 1] == 0) Q.L--;
        P.hash = check_reduce(p_check_);
        Q.hash = check_reduce(q_check_);
    }

  private:
    void start(const WordSum<alternating>& sum) {
        P_[0] = sum.P;
        Q_[0] = sum.Q;
        p_check_ = sum.p_check;
        q_check_ = sum.q_check;
    }

    // P = P q + or - p, Q = Q q. The subtraction borrows through the words afterwards.
    void append(const WordSum<alternating>& sum, bool subtract) {
        Word p_carry = subtract ? 0 : sum.P;
        Word q_carry = 0;
        for (std::uint64_t i = 0; i < L_; i++) {
            const DoubleWord p = static_cast<DoubleWord>(P_[i]) * sum.Q + p_carry;
            const DoubleWord q = static_cast<DoubleWord>(Q_[i]) * sum.Q + q_carry;
            P_[i] = low_word(p);
            Q_[i] = low_word(q);
            p_carry = high_word(p);
            q_carry = high_word(q);
        }
        if ((p_carry | q_carry) != 0) {
            P_[L_] = p_carry;
            Q_[L_] = q_carry;
            L_++;
        }
        if (subtract) {
            const bool borrow = P_[0] < sum.P;
            P_[0] -= sum.P;
            sub_borrow(P_ + 1, L_ - 1, borrow);
        }
        p_check_ = leaf::residue_sum(p_check_, sum.q_check, 1,
                                     subtract ? 2 * check_modulus - sum.p_check : sum.p_check);
        q_check_ = leaf::residue_product(q_check_, sum.q_check);
    }

    Word* P_;
    Word* Q_;
    std::uint64_t L_ = 1;
    std::uint64_t p_check_;
    std::uint64_t q_check_;
};

void sum_terms(bool alternating, BasicInt& P, BasicInt& Q, std::uint64_t a, std::uint64_t b) {
    if (alternating) {
        RangeSum<true>(P.T, Q.T, a, b).store(P, Q);
    } else {
        RangeSum<false>(P.T, Q.T, a, b).store(P, Q);
    }
}

void kernel(const char* function, bool alternating, BasicInt& P, BasicInt& Q, std::uint64_t a,
            std::uint64_t b) {
    require_capacity(function, P.AL, b - a);
    require_capacity(function, Q.AL, b - a);
    sum_terms(alternating, P, Q, a, b);
}

}  // namespace

void E_TaylorN_BSR_End_PQ1(BasicInt& P, BasicInt& Q, std::uint64_t a, std::uint64_t b) {
    kernel("E_TaylorN_BSR_End_PQ1()", false, P, Q, a, b);
}

void E_TaylorA_BSR_End_PQ1(BasicInt& P, BasicInt& Q, std::uint64_t a, std::uint64_t b) {
    kernel("E_TaylorA_BSR_End_PQ1()", true, P, Q, a, b);
}

void sum_e_taylor_leaf(bool alternating, BasicInt& P, BasicInt& Q, std::uint64_t a, std::uint64_t b) {
    if (b - a < halved_leaf) {
        if (alternating) {
            E_TaylorA_BSR_End_PQ1(P, Q, a, b);
        } else {
            E_TaylorN_BSR_End_PQ1(P, Q, a, b);
        }
        return;
    }
    // Where words hold several terms, a product of the halves would cost more than going on word by word.
    if (terms_per_word(b) > 1 && std::min(P.AL, Q.AL) >= b - a) {
        sum_terms(alternating, P, Q, a, b);
        return;
    }
    Word words[4 * half_leaf_words];
    BasicInt P0(words, half_leaf_words);
    BasicInt Q0(words + half_leaf_words, half_leaf_words);
    BasicInt P1(words + 2 * half_leaf_words, half_leaf_words);
    BasicInt Q1(words + 3 * half_leaf_words, half_leaf_words);
    const std::uint64_t m = (a + b) >> 1;
    sum_e_taylor_leaf(alternating, P0, Q0, a, m);
    sum_e_taylor_leaf(alternating, P1, Q1, m, b);
    P.set_mulB(P0, Q1);
    if (alternating && ((m ^ a) & 1)) {
        P -= P1;
    } else {
        P += P1;
    }
    Q.set_mulB(Q0, Q1);
}

}  // namespace qmp
