#include "constants/pi_formulas.h"

#include "constants/pi_terms.h"
#include "errors/check.h"
#include "series/leaf_int.h"
#include "series/series_constants.h"
#include "series/term_by_term_series.h"

namespace kelvara {

using qmp::BasicInt;
using qmp::BSS_P2B3_Type0;
using qmp::ExactFloat;
using qmp::leaf_mul;
using qmp::leaf_set;
using qmp::parse_literal;
using qmp::require_capacity;
using qmp::SeriesCost;
using qmp::TermByTermSeries;
using qmp::Word;

namespace {

constexpr std::uint64_t r_words = 3;
constexpr std::uint64_t p_words = 5;
constexpr std::uint64_t q_words = 4;

// x = R (slope k + offset), a factor of up to two words.
void mul_linear(BasicInt& x, const BasicInt& R, Word slope, Word offset, std::uint64_t k) {
    Word words[3];
    BasicInt factor(words, 3);
    leaf_set(factor, slope);
    leaf_mul(factor, k);
    leaf_add(factor, offset);
    x.set_mulB(R, factor);
}

// x = c k^3.
void cube(BasicInt& x, Word c, std::uint64_t k) {
    leaf_set(x, c);
    leaf_mul(x, k);
    leaf_mul(x, k);
    leaf_mul(x, k);
}

struct ChudnovskyKernel {
    using Numbers = ChudnovskyNumbers;
    static constexpr bool alternating = Numbers::alternating;
    static constexpr std::uint64_t size_margin = 23;
    static constexpr std::uint64_t leaf_size = Numbers::leaf_size;
    static constexpr std::uint64_t words = p_words;
    static constexpr std::uint64_t longest_range = leaf_size - 1;

    void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const {
        Pi_Chudnovsky_BSR_End_PR1(P, R, k);
        Pi_Chudnovsky_BSR_End_Q1(Q, k);
    }
    qmp::TermFactors term_factors() const { return pi_term_factors<Numbers>(); }
    // One more bit and P takes three words; the following steps serve the largest computations.
    bool sum_leaf(ExactFloat& P, ExactFloat& Q, ExactFloat& R, std::uint64_t a, std::uint64_t b) const {
        return qmp::leaf::sum_leaf<23, 31, 39>(PiTerms<Numbers>(), P, Q, R, a, b);
    }
};

struct RamanujanKernel {
    using Numbers = RamanujanNumbers;
    static constexpr bool alternating = Numbers::alternating;
    static constexpr std::uint64_t size_margin = 23;
    static constexpr std::uint64_t leaf_size = Numbers::leaf_size;
    static constexpr std::uint64_t words = p_words;
    static constexpr std::uint64_t longest_range = leaf_size - 1;

    void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const {
        Pi_Ramanujan_BSR_End_R1(R, k);
        Pi_Ramanujan_BSR_End_P1(P, R, k);
        Pi_Ramanujan_BSR_End_Q1(Q, k);
    }
    qmp::TermFactors term_factors() const { return pi_term_factors<Numbers>(); }
    bool sum_leaf(ExactFloat& P, ExactFloat& Q, ExactFloat& R, std::uint64_t a, std::uint64_t b) const {
        return qmp::leaf::sum_leaf<27, 31, 39>(PiTerms<Numbers>(), P, Q, R, a, b);
    }
};

// Per term: ln(640320^3 / 1728) and ln(640320^3 / 24).
const BSS_P2B3_Type0& chudnovsky() {
    static const TermByTermSeries<ChudnovskyKernel> series(
        SeriesCost::of(parse_literal("32.65445004176851599077913804969300490729"),
                       parse_literal("36.93111616078457130182132488791258602081"), 3));
    return series;
}

// Per term: ln 96059301, which is a little below ln(396^4 / 256) and kept so that term counts stay as they
// are, and ln(396^4 / 8).
const BSS_P2B3_Type0& ramanujan() {
    static const TermByTermSeries<RamanujanKernel> series(
        SeriesCost::of(parse_literal("18.38047627747241588639166145022043732094"),
                       parse_literal("21.84621530333808625449589681453160567684"), 3));
    return series;
}

}  // namespace

const PiFormula& pi_formula(std::uint32_t algorithm) {
    static const PiFormula formulas[] = {
        {chudnovsky(), true, 13591409, 4270934400, 10005, false, "Chudnovsky", "Chudnovsky Formula"},
        {ramanujan(), false, 1103, 9801, 8, false, "Ramanujan", "Ramanujan's Formula"},
        {chudnovsky(), true, 13591409, 4270934400, 10005, true, "Chudnovsky",
         "Chudnovsky Formula (reduced memory)"},
        {ramanujan(), false, 1103, 9801, 8, true, "Ramanujan", "Ramanujan's Formula (reduced memory)"},
    };
    return formulas[algorithm];
}

void Pi_Chudnovsky_BSR_End_PR1(BasicInt& P, BasicInt& R, std::uint64_t k) {
    const char* function = "Pi_Chudnovsky_BSR_End_PR1()";
    require_capacity(function, R.AL, r_words);
    require_capacity(function, P.AL, p_words);
    leaf_set(R, 6 * k - 5);
    leaf_mul(R, 2 * k - 1);
    leaf_mul(R, 6 * k - 1);
    mul_linear(P, R, ChudnovskyNumbers::A, ChudnovskyNumbers::B, k);
}

void Pi_Chudnovsky_BSR_End_Q1(BasicInt& Q, std::uint64_t k) {
    require_capacity("Pi_Chudnovsky_BSR_End_Q1()", Q.AL, q_words);
    cube(Q, ChudnovskyNumbers::C, k);
}

void Pi_Ramanujan_BSR_End_R1(BasicInt& R, std::uint64_t k) {
    require_capacity("Pi_Ramanujan_BSR_End_R1()", R.AL, r_words);
    leaf_set(R, 4 * k - 3);
    leaf_mul(R, 2 * k - 1);
    leaf_mul(R, 4 * k - 1);
}

void Pi_Ramanujan_BSR_End_P1(BasicInt& P, const BasicInt& R, std::uint64_t k) {
    require_capacity("Pi_Ramanujan_BSR_End_P1()", P.AL, p_words);
    mul_linear(P, R, RamanujanNumbers::A, RamanujanNumbers::B, k);
}

void Pi_Ramanujan_BSR_End_Q1(BasicInt& Q, std::uint64_t k) {
    require_capacity("Pi_Ramanujan_BSR_End_Q1()", Q.AL, q_words);
    cube(Q, RamanujanNumbers::C, k);
}

}  // namespace kelvara
