// The primes that both parts of a merge have in common, taken out before it.
//
// P = P0 Q1 +- R0 P1, Q = Q0 Q1, R = R0 R1 describe the same sum and the same ratio R/Q when R0 and Q1 are
// divided by a number c that divides both: all three results lose the factor c. The terms of our series are
// products of linear factors, in which every small prime occurs about as often in Q as in R, so that for long
// ranges most of their size goes. c is known without a gcd, and without a look at the range: of s consecutive
// values of a linear factor at least floor(s / p^i) are multiples of p^i, wherever they lie. Where a range is
// halved in the middle again and again, all ranges of one level take out the same c, whose inverse is
// prepared once. What such a bound leaves behind, the merges above find. (The idea is that of the factored
// binary splitting for pi of Cheng, Hanrot, Thome, Zima and Zimmermann, "Time- and space-efficient evaluation
// of some hypergeometric constants", 2007; they keep the factorisations of the numbers, we none.)
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "multiply/exact_divisor.h"
#include "numbers/exact_float.h"
#include "series/term_factors.h"

namespace qmp {

class CommonFactors {
  public:
    // Which levels take factors out, by the least terms of the halves that they merge.
    struct Levels {
        std::uint64_t shortest = 64;  // of the lowest level, at least 8
        std::uint64_t every = 1024;   // up to here each level does, above every other one
        std::uint64_t longest = 16384;
    };

    // For a series of the indices 1 .. last.
    CommonFactors(const TermFactors& factors, std::uint64_t last) : CommonFactors(factors, last, Levels{}) {}
    CommonFactors(const TermFactors& factors, std::uint64_t last, Levels levels);

    // Makes ready for a range of so many terms and those that come of halving it in the middle; the inverses
    // take up to some 10 MB of the heap. Not while such a range is being summed. The context's scratch serves
    // the range's own products.
    void prepare(const MultiplyContext& context, std::uint64_t terms);

    // The level of the range that prepare() was called for; its halves have the next lower one, and so on.
    // Ranges below level 1 are split as they like, and their merges take nothing out.
    int level() const { return level_; }

    // Before a merge that makes a range of this level, 1 or higher: divides R0 and Q1 by what they have in
    // common.
    void cancel(const MultiplyContext& context, int level, ExactFloat& R0, ExactFloat& Q1) const;

    // Of the number that a level takes out; 0 where it takes none.
    std::uint64_t divisor_words(int level) const;

  private:
    // What the merges of one level take out.
    struct Divisor {
        std::vector<Word> words;  // none: nothing
        std::uint64_t inverse_check = 0;
        // For long ones; the one for R serves where R is much shorter than Q.
        std::unique_ptr<ExactDivisor> exact, exact_r;
    };

    bool add_level(const MultiplyContext& context, std::uint64_t merges);
    void set_divisor(const MultiplyContext& context, Divisor& divisor, const std::vector<Word>& factors,
                     std::uint64_t terms, double without);
    static void divide(const MultiplyContext& context, const Divisor& divisor, const ExactDivisor* exact,
                       ExactFloat& number);
    // Bases come in steps, so that most blocks of a plan share theirs.
    std::uint64_t base_step() const { return levels_.shortest / 8; }

    TermFactors factors_;
    std::uint64_t last_;
    Levels levels_;
    int level_ = 0;
    // A range of level l has at least base_ 2^l and at most (base_ + base_step()) 2^l terms.
    std::uint64_t base_ = 0;
    std::vector<Divisor> divisors_;  // [level - 1]
    // The exponents of the odd primes in what is taken out of a range of the highest level so far, and all of
    // them as bits.
    std::vector<std::uint64_t> taken_;
    double taken_bits_ = 0;
};

// What the merges in a range take out, if anything.
struct RangeFactors {
    const CommonFactors* factors = nullptr;
    int level = 0;

    RangeFactors() = default;
    RangeFactors(const CommonFactors* common, int of_level) : factors(common), level(of_level) {}
    // Of the range that they were prepared for.
    explicit RangeFactors(const CommonFactors* common) : RangeFactors(common, common ? common->level() : 0) {}

    bool any() const { return factors && level > 0; }
    RangeFactors of_half() const { return {factors, level - 1}; }
};

}  // namespace qmp
