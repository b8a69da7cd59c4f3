#include "series/common_factors.h"

#include <algorithm>
#include <utility>

#include "multiply/basecase/exact_division.h"
#include "multiply/basecase/word_kernels.h"
#include "multiply/exact_divisor.h"
#include "multiply/multiply.h"
#include "numbers/check_value.h"

namespace qmp {

namespace {

// Primes and their powers are counted up to here: larger ones divide next to nothing of short ranges.
constexpr std::uint64_t largest_modulus = 4096;

// Indices from here on are not counted: with moduli below 2^24 the reciprocals are exact up to it.
constexpr std::uint64_t index_limit = std::uint64_t{1} << 39;

std::vector<std::uint32_t> odd_primes() {
    std::vector<bool> composite(largest_modulus + 1);
    std::vector<std::uint32_t> primes;
    for (std::uint32_t i = 3; i <= largest_modulus; i += 2) {
        if (composite[i]) continue;
        primes.push_back(i);
        for (std::uint64_t j = std::uint64_t{i} * i; j <= largest_modulus; j += 2 * i) composite[j] = true;
    }
    return primes;
}

std::uint64_t inverse_modulo(std::uint64_t x, std::uint64_t modulus) {
    std::int64_t r0 = static_cast<std::int64_t>(modulus), r1 = static_cast<std::int64_t>(x % modulus);
    std::int64_t t0 = 0, t1 = 1;
    while (r1 != 0) {
        const std::int64_t quotient = r0 / r1;
        r0 = std::exchange(r1, r0 - quotient * r1);
        t0 = std::exchange(t1, t0 - quotient * t1);
    }
    return static_cast<std::uint64_t>(t0 < 0 ? t0 + static_cast<std::int64_t>(modulus) : t0);
}

// A product of small numbers, and its check value.
class SmallProduct {
  public:
    static constexpr std::uint64_t capacity = longest_divisor;

    // False, with nothing changed, when the product might become too long.
    bool multiply(Word factor) {
        if (length_ + 1 >= capacity) return false;
        const DoubleWord product = static_cast<DoubleWord>(pending_) * factor;
        if (high_word(product) == 0) {
            pending_ = low_word(product);
        } else {
            flush();
            pending_ = factor;
        }
        return true;
    }
    void flush() {
        check_ = check_mul(check_, check_reduce(pending_));
        const Word carry = mul_word(words_, words_, length_, pending_);
        if (carry != 0) words_[length_++] = carry;
        pending_ = 1;
    }
    const Word* words() const { return words_; }
    std::uint64_t length() const { return length_; }
    std::uint64_t check() const { return check_; }
    bool is_one() const { return length_ == 1 && words_[0] == 1 && pending_ == 1; }

  private:
    Word words_[capacity] = {1};
    std::uint64_t length_ = 1;
    std::uint64_t check_ = 1;
    Word pending_ = 1;
};

// Divides both numbers. The quotients are the same by every method.
void divide(const MultiplyContext& context, ExactFloat& x, ExactFloat& y, const SmallProduct& divisor,
            const ExactFloat& temporary) {
    const std::uint64_t m = divisor.length();
    const std::uint64_t quotient = std::max(x.L, y.L) - m + 1;
    if (m >= ExactDivisor::shortest_divisor && quotient <= ExactDivisor::longest_quotient &&
        temporary.AL >= 2 * quotient &&
        context.scratch_words >= scratch_words_for(2 * quotient, context.tds)) {
        const ExactDivisor exact(context, divisor.words(), m, quotient, temporary.base);
        for (ExactFloat* number : {&x, &y}) number->L = exact.divide(number->T, number->L);
    } else {
        for (ExactFloat* number : {&x, &y})
            number->L = divide_exact(number->T, number->L, divisor.words(), m);
    }
    const std::uint64_t inverse = pow_mod(divisor.check(), check_modulus - 2);
    for (ExactFloat* number : {&x, &y}) number->hash = check_mul(number->hash, inverse);
}

}  // namespace

std::uint64_t CommonFactors::Root::up_to(std::uint64_t index) const {
    return high_word(static_cast<DoubleWord>(index + shift) * reciprocal);
}

CommonFactors::CommonFactors(const TermFactors& factors, Ranges ranges) : ranges_(ranges) {
    for (const std::uint32_t prime : odd_primes()) {
        primes_.push_back({prime, static_cast<std::uint32_t>(roots_.size()), 0, 0});
        for (const TermFactor& factor : factors.Q) add_roots(prime, factor, true);
        for (const TermFactor& factor : factors.R) add_roots(prime, factor, false);
    }
    primes_.push_back({0, static_cast<std::uint32_t>(roots_.size()), 0, 0});
}

void CommonFactors::add_roots(std::uint32_t prime, const TermFactor& factor, bool in_q) {
    std::uint64_t slope = factor.slope;
    std::int64_t offset = factor.offset;
    std::uint32_t& per_term = in_q ? primes_.back().q_per_term : primes_.back().r_per_term;
    while (slope % prime == 0 && offset % prime == 0) {
        slope /= prime;
        offset /= prime;
        per_term += factor.power;
    }
    if (slope % prime == 0) return;
    for (std::uint64_t modulus = prime; modulus <= largest_modulus; modulus *= prime) {
        const std::uint64_t positive =
            static_cast<std::uint64_t>(offset % std::int64_t(modulus) + std::int64_t(modulus));
        // slope k + offset = 0 at k = -shift.
        const std::uint64_t shift = positive % modulus * inverse_modulo(slope, modulus) % modulus;
        roots_.push_back({static_cast<std::uint32_t>(modulus), static_cast<std::uint32_t>(shift),
                          ~std::uint64_t{0} / modulus + 1, factor.power, in_q});
    }
}

std::size_t CommonFactors::primes_for(std::uint64_t terms) const {
    const auto end = std::upper_bound(primes_.begin(), primes_.end() - 1, terms,
                                      [](std::uint64_t limit, const Prime& p) { return limit < p.value; });
    return static_cast<std::size_t>(end - primes_.begin());
}

void CommonFactors::count(FactorCounts& counts, std::size_t end, std::uint64_t a, std::uint64_t b) const {
    for (std::size_t i = counts.primes; i < end; i++) {
        std::uint64_t q = primes_[i].q_per_term * (b - a);
        std::uint64_t r = primes_[i].r_per_term * (b - a);
        for (std::uint32_t j = primes_[i].first_root; j < primes_[i + 1].first_root; j++) {
            const Root& root = roots_[j];
            (root.in_q ? q : r) += root.weight * (root.up_to(b) - root.up_to(a));
        }
        counts.q[i] = static_cast<std::uint32_t>(q);
        counts.r[i] = static_cast<std::uint32_t>(r);
    }
    counts.primes = std::max(counts.primes, end);
}

void CommonFactors::cancel(const MultiplyContext& context, FactorCounts& left, FactorCounts& right,
                           ExactFloat& R0, ExactFloat& Q1, const ExactFloat& temporary, std::uint64_t a,
                           std::uint64_t m, std::uint64_t b) const {
    if (b > index_limit) return;  // what is counted of the left half holds for the whole, too
    const std::size_t primes = std::max({primes_for(b - a), left.primes, right.primes});
    count(left, primes, a, m);
    count(right, primes, m, b);
    SmallProduct product;
    for (std::size_t i = 0; i < primes; i++) {
        const std::uint32_t common = std::min(left.r[i], right.q[i]);
        std::uint32_t taken = 0;
        while (taken < common && product.multiply(primes_[i].value)) taken++;
        left.q[i] += right.q[i] - taken;
        left.r[i] += right.r[i] - taken;
    }
    if (product.is_one()) return;
    product.flush();
    divide(context, R0, Q1, product, temporary);
}

}  // namespace qmp
