// Two formulas for pi whose terms give hexadecimal digits from any position on, as tables of series.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace kelvara::bbp {

enum class Formula : std::uint8_t { plouffe = 0, bellard = 1 };
constexpr std::size_t formula_count = 2;

// As menus name it.
const char* name_of(Formula formula);
const char* name_of_choice(Formula formula);
// The formula itself, as text.
std::array<const char*, 3> picture_of(Formula formula);

// sign * sum over k >= 0 of 2^(exponent + step * k) / (alpha * k + beta); step < 0.
struct Term {
    std::uint64_t alpha;
    std::uint64_t beta;
    std::int64_t step;
    std::int64_t exponent;
    bool add;
};

// The sum of these, modulo 1, is the fraction whose digits are those of pi from 16^-(offset + 1) on.
std::vector<Term> terms(Formula formula, std::uint64_t offset);
// How many k each of them takes, for so many digits and the guard digits.
std::uint64_t terms_needed(Formula formula, std::uint64_t offset, std::uint64_t digits);

// "Frac( 1/(8k + 1) * 2^(-4k + 4000000002) )"
std::string text_of(const Term& term);

}  // namespace kelvara::bbp
