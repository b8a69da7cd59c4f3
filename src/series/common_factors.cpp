#include "series/common_factors.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "multiply/basecase/exact_division.h"
#include "multiply/multiply.h"
#include "numbers/check_value.h"

namespace qmp {

namespace {

// Shorter divisors divide by the schoolbook.
constexpr std::uint64_t shortest_transformed = 20;

// An inverse that fewer merges use costs more than it saves.
constexpr std::uint64_t fewest_merges = 4;

std::vector<std::uint32_t> odd_primes(std::uint64_t limit) {
    std::vector<bool> composite(limit + 1);
    std::vector<std::uint32_t> primes;
    for (std::uint64_t i = 3; i <= limit; i += 2) {
        if (composite[i]) continue;
        primes.push_back(static_cast<std::uint32_t>(i));
        for (std::uint64_t j = i * i; j <= limit; j += 2 * i) composite[j] = true;
    }
    return primes;
}

// The exponent of p in the product of `factors` over any `terms` consecutive indices, at the least.
std::uint64_t least_power(const std::vector<TermFactor>& factors, std::uint64_t p, std::uint64_t terms) {
    std::uint64_t multiples = 0;
    for (std::uint64_t power = p; power <= terms; power *= p) multiples += terms / power;
    std::uint64_t sum = 0;
    for (const TermFactor& factor : factors) {
        std::uint64_t slope = factor.slope;
        std::int64_t offset = factor.offset;
        while (slope % p == 0 && offset % static_cast<std::int64_t>(p) == 0) {
            slope /= p;
            offset /= static_cast<std::int64_t>(p);
            sum += factor.power * terms;
        }
        if (slope % p != 0) sum += factor.power * multiples;
    }
    return sum;
}

// Of the product of `factors` at one index up to `last`, at the most.
double bits_of_term(const std::vector<TermFactor>& factors, std::uint64_t last) {
    double bits = 0;
    for (const TermFactor& factor : factors) {
        const double value = static_cast<double>(factor.slope) * static_cast<double>(last) +
                             std::fabs(static_cast<double>(factor.offset));
        bits += factor.power * std::log2(value);
    }
    return bits;
}

// The product of numbers[0 .. count).
std::vector<Word> product(const MultiplyContext& context, const Word* numbers, std::uint64_t count) {
    if (count == 1) return {numbers[0]};
    const std::vector<Word> a = product(context, numbers, count / 2);
    const std::vector<Word> b = product(context, numbers + count / 2, count - count / 2);
    std::vector<Word> result(a.size() + b.size());
    multiply(context, result.data(), a.data(), a.size(), b.data(), b.size());
    if (result.back() == 0) result.pop_back();
    return result;
}

// The odd primes with their exponents, as words of several factors each.
std::vector<Word> as_words(const std::vector<std::uint32_t>& primes,
                           const std::vector<std::uint64_t>& powers) {
    std::vector<Word> words = {1};
    for (std::size_t i = 0; i < powers.size(); i++) {
        for (std::uint64_t j = 0; j < powers[i]; j++) {
            const DoubleWord next = static_cast<DoubleWord>(words.back()) * primes[i];
            if (high_word(next) == 0) {
                words.back() = low_word(next);
            } else {
                words.push_back(primes[i]);
            }
        }
    }
    return words;
}

double bits_of(const std::vector<std::uint32_t>& primes, const std::vector<std::uint64_t>& powers) {
    double bits = 0;
    for (std::size_t i = 0; i < powers.size(); i++)
        bits += static_cast<double>(powers[i]) * std::log2(static_cast<double>(primes[i]));
    return bits;
}

}  // namespace

CommonFactors::CommonFactors(const TermFactors& factors, std::uint64_t last, Levels levels)
    : factors_(factors), last_(last), levels_(levels) {}

void CommonFactors::prepare(const MultiplyContext& context, std::uint64_t terms) {
    level_ = std::max(0, static_cast<int>(std::bit_width(terms / levels_.shortest)) - 1);
    const std::uint64_t base = (terms >> level_) / base_step() * base_step();
    if (base != base_) {
        base_ = base;
        divisors_.clear();
        taken_.clear();
        taken_bits_ = 0;
    }
    while (divisors_.size() < static_cast<std::size_t>(level_)) {
        const std::size_t above = static_cast<std::size_t>(level_) - 1 - divisors_.size();
        if (!add_level(context, std::uint64_t{1} << above)) break;
    }
}

// The next level, which so many merges of the range at hand make. False when it is not worth it.
bool CommonFactors::add_level(const MultiplyContext& context, std::uint64_t merges) {
    const std::uint64_t terms = base_ << divisors_.size();
    if (terms > levels_.longest) return false;
    std::vector<std::uint32_t> primes;
    std::vector<std::uint64_t> powers;
    const int beyond = static_cast<int>(std::bit_width(terms / levels_.every)) - 1;
    if (beyond <= 0 || beyond % 2 == 0) {
        primes = odd_primes(terms);
        for (std::size_t i = 0; i < primes.size(); i++) {
            const std::uint64_t both = std::min(least_power(factors_.R, primes[i], terms),
                                                least_power(factors_.Q, primes[i], terms));
            const std::uint64_t taken = i < taken_.size() ? taken_[i] : 0;
            powers.push_back(both > taken ? both - taken : 0);
        }
    }
    Divisor divisor;
    const double bits = bits_of(primes, powers);
    if (bits >= 1) {
        if (bits >= 64.0 * shortest_transformed && merges < fewest_merges) return false;
        set_divisor(context, divisor, as_words(primes, powers), terms, taken_bits_ + bits);
    }
    divisors_.push_back(std::move(divisor));
    taken_.resize(std::max(taken_.size(), powers.size()));
    for (std::size_t i = 0; i < taken_.size(); i++)
        taken_[i] = 2 * taken_[i] + (i < powers.size() ? powers[i] : 0);
    taken_bits_ = 2 * taken_bits_ + bits;
    return true;
}

// The divisor is the product of `factors`. `without`: the bits that the halves' Q and R lack in all.
void CommonFactors::set_divisor(const MultiplyContext& context, Divisor& divisor,
                                const std::vector<Word>& factors, std::uint64_t terms, double without) {
    divisor.words = product(context, factors.data(), factors.size());
    std::uint64_t check = 1;
    for (const Word factor : factors) check = check_mul(check, check_reduce(factor));
    divisor.inverse_check = pow_mod(check, check_modulus - 2);
    if (divisor.words.size() < shortest_transformed) return;

    const double most_terms = static_cast<double>(terms / base_ * (base_ + base_step()));
    const auto quotient_words = [&](const std::vector<TermFactor>& of) {
        const double bits = most_terms * bits_of_term(of, last_) - without;
        return std::max(ExactDivisor::shortest_quotient,
                        static_cast<std::uint64_t>(std::max(0.0, bits) / 64) + 2);
    };
    const std::uint64_t for_q = quotient_words(factors_.Q), for_r = quotient_words(factors_.R);
    const auto divider = [&](std::uint64_t words) {
        return std::make_unique<ExactDivisor>(context, divisor.words.data(), divisor.words.size(), words);
    };
    divisor.exact = divider(std::max(for_q, for_r));
    if (for_r < for_q - for_q / 8) divisor.exact_r = divider(for_r);
}

void CommonFactors::cancel(const MultiplyContext& context, int level, ExactFloat& R0, ExactFloat& Q1) const {
    const auto index = static_cast<std::size_t>(level - 1);
    if (index >= divisors_.size() || divisors_[index].words.empty()) return;
    const Divisor& divisor = divisors_[index];
    divide(context, divisor, divisor.exact_r ? divisor.exact_r.get() : divisor.exact.get(), R0);
    divide(context, divisor, divisor.exact.get(), Q1);
}

void CommonFactors::divide(const MultiplyContext& context, const Divisor& divisor, const ExactDivisor* exact,
                           ExactFloat& number) {
    number.L = exact ? exact->divide(context, number.T, number.L)
                     : divide_exact(number.T, number.L, divisor.words.data(), divisor.words.size());
    number.hash = check_mul(number.hash, divisor.inverse_check);
}

std::uint64_t CommonFactors::divisor_words(int level) const {
    const auto index = static_cast<std::size_t>(level - 1);
    return index < divisors_.size() ? divisors_[index].words.size() : 0;
}

}  // namespace qmp
