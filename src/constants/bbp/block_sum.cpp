#include "constants/bbp/block_sum.h"

#include <algorithm>
#include <bit>

namespace kelvara::bbp {
namespace {

constexpr int double_fraction_bits = 52;
constexpr std::int64_t double_exponent_bias = 1023;
// From here on 2^63 has a quotient that a double can hold.
constexpr std::uint64_t least_modulus_of_wide_starts = std::uint64_t{1} << 13;

std::uint64_t modulus(const Term& term, std::uint64_t k) {
    return term.alpha * k + term.beta;
}
std::int64_t exponent(const Term& term, std::uint64_t k) {
    return term.exponent + term.step * static_cast<std::int64_t>(k);
}

TermRun run_from(const Term& term, std::uint64_t first, std::uint64_t count) {
    TermRun run;
    run.modulus = static_cast<double>(modulus(term, first));
    run.modulus_step = static_cast<double>(term.alpha);
    run.count = count;
    return run;
}

// As the kernels take them: modulo 2^64.
std::uint64_t shifted(std::int64_t value, int bits) {
    return static_cast<std::uint64_t>(value) << bits;
}

}  // namespace

std::uint64_t count_of_powers(const Term& term) {
    return term.exponent < 1 ? 0 : static_cast<std::uint64_t>((term.exponent - 1) / -term.step) + 1;
}

bool within_limit(const Term& term, std::uint64_t count) {
    const std::uint64_t powers = std::min(count, count_of_powers(term));
    return powers == 0 || modulus(term, powers - 1) < modulus_limit;
}

BlockSum::BlockSum(const Kernels& kernels, std::uint64_t words)
    : kernels_(kernels), fraction_(words), sums_(fraction_.chunks() * kernels.lanes) {}

void BlockSum::add(const Term& term, std::uint64_t first, std::uint64_t end) {
    const std::uint64_t powers_end = std::clamp(count_of_powers(term), first, end);
    if (first < powers_end) add_powers(term, first, powers_end - first);
    for (std::uint64_t k = powers_end; k < end; k += kernels_.most_small_terms) {
        add_small_terms(term, k, std::min(end - k, kernels_.most_small_terms));
    }
    fraction_.take(sums_, kernels_.lanes);
}

// The leading bits of the exponent, as many as make 2^63 or 2^31, cost no squaring. The first exponent of a
// run is its largest and decides how many are left.
void BlockSum::add_powers(const Term& term, std::uint64_t first, std::uint64_t count) {
    const int start_bits = modulus(term, first) >= least_modulus_of_wide_starts ? 6 : 5;
    const std::int64_t largest = exponent(term, first);
    TermRun run = run_from(term, first, count);
    run.squarings =
        std::max(static_cast<int>(std::bit_width(static_cast<std::uint64_t>(largest))) - start_bits, 0);
    run.exponent = shifted(largest, double_fraction_bits - run.squarings);
    run.exponent_step = shifted(term.step, double_fraction_bits - run.squarings);
    kernels_.add_powers(run, fraction_.chunks(), sums_.data());
}

void BlockSum::add_small_terms(const Term& term, std::uint64_t first, std::uint64_t count) {
    const std::int64_t largest = exponent(term, first);
    const std::int64_t first_chunk = -largest / chunk_bits;
    if (first_chunk >= static_cast<std::int64_t>(fraction_.chunks())) return;
    TermRun run = run_from(term, first, count);
    run.first_chunk = static_cast<std::uint64_t>(first_chunk);
    run.exponent = shifted(double_exponent_bias + largest + chunk_bits * first_chunk, double_fraction_bits);
    run.exponent_step = shifted(term.step, double_fraction_bits);
    kernels_.add_small_terms(run, fraction_.chunks(), sums_.data());
}

}  // namespace kelvara::bbp
