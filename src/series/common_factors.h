// The primes that both parts of a merge have in common, taken out before it.
//
// P = P0 Q1 +- R0 P1, Q = Q0 Q1, R = R0 R1 describe the same sum and the same ratio R/Q when R0 and Q1 are
// divided by a number c that divides both: all three results lose the factor c. The terms of our series are
// products of linear factors, in which every small prime occurs about as often in Q as in R, so that for long
// ranges most of their size goes. c is known without a gcd: a table of the residues at which a prime power
// divides a factor gives the primes' exponents in the R and Q of a range, and what merges took out is kept
// count of on the way up. (The idea is that of the factored binary splitting for pi of Cheng, Hanrot, Thome,
// Zima and Zimmermann, "Time- and space-efficient evaluation of some hypergeometric constants", 2007; they
// keep the factorisations of the numbers, we the exponents of the small primes only.)
#pragma once

#include <cstdint>
#include <vector>

#include "numbers/exact_float.h"
#include "series/term_factors.h"

namespace qmp {

// Exponents of the first `primes` odd primes below 4096 in the Q and the R of a range, less what was taken
// out; lower bounds, where high powers are not counted.
struct FactorCounts {
    static constexpr std::size_t capacity = 563;

    std::size_t primes = 0;
    std::uint32_t q[capacity];
    std::uint32_t r[capacity];
};

class CommonFactors {
  public:
    // Terms of the ranges that are worth it. For shorter ones counting costs more than what is saved, for
    // longer ones dividing.
    struct Ranges {
        std::uint64_t shortest = 128;
        std::uint64_t longest = 2048;
    };

    explicit CommonFactors(const TermFactors& factors) : CommonFactors(factors, Ranges{}) {}
    CommonFactors(const TermFactors& factors, Ranges ranges);

    // Whether the merge that makes a range of this many terms takes factors out.
    bool applies(std::uint64_t terms) const { return terms >= ranges_.shortest && terms <= ranges_.longest; }

    // Before the merge of (a, m] and (m, b]: divides R0 and Q1 by what they have in common, and replaces the
    // counts of the left half by those of the whole. The counts of a half are what this function made of
    // them, or empty for a range that was too short for it.
    // The buffer of `temporary` may be overwritten.
    void cancel(const MultiplyContext& context, FactorCounts& left, FactorCounts& right, ExactFloat& R0,
                ExactFloat& Q1, const ExactFloat& temporary, std::uint64_t a, std::uint64_t m,
                std::uint64_t b) const;

  private:
    // A power of a prime: it divides a factor of Q or R at the indices k = -shift modulo the power.
    struct Root {
        std::uint32_t modulus;
        std::uint32_t shift;
        std::uint64_t reciprocal;  // ceil(2^64 / modulus)
        std::uint32_t weight;
        bool in_q;

        std::uint64_t up_to(std::uint64_t index) const;
    };
    struct Prime {
        std::uint32_t value;
        std::uint32_t first_root;
        std::uint32_t q_per_term;  // from constants
        std::uint32_t r_per_term;
    };

    void add_roots(std::uint32_t prime, const TermFactor& factor, bool in_q);
    std::size_t primes_for(std::uint64_t terms) const;
    void count(FactorCounts& counts, std::size_t end, std::uint64_t a, std::uint64_t b) const;

    Ranges ranges_;
    std::vector<Prime> primes_;  // and one behind the last, for its first_root
    std::vector<Root> roots_;
};

}  // namespace qmp
