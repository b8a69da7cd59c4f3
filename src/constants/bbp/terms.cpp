#include "constants/bbp/terms.h"

#include "constants/bbp/settings.h"

namespace kelvara::bbp {
namespace {

// Bellard's alternating sum is folded over pairs of k, which makes its step 2^-20.
constexpr Term plouffe[] = {
    {8, 1, -4, 2, true},
    {2, 1, -4, -1, false},
    {8, 5, -4, 0, false},
    {4, 3, -4, -1, false},
};
constexpr Term bellard[] = {
    {8, 1, -20, -1, false},   {8, 3, -20, -6, false},    {8, 5, -20, -11, true},   {8, 7, -20, -16, true},
    {20, 1, -20, 2, true},    {20, 3, -20, 0, false},    {20, 5, -20, -4, false},  {20, 7, -20, -4, false},
    {20, 9, -20, -6, true},   {20, 11, -20, -8, false},  {20, 13, -20, -10, true}, {20, 15, -20, -14, true},
    {20, 17, -20, -14, true}, {20, 19, -20, -16, false},
};

}  // namespace

const char* name_of(Formula formula) {
    return formula == Formula::plouffe ? "Plouffe's 4-term BBP" : "Bellard's 7-term BBP";
}

const char* name_of_choice(Formula formula) {
    return formula == Formula::plouffe ? name_of(formula) : "Bellard's 7-term BBP  (~43% faster)";
}

std::array<const char*, 3> picture_of(Formula formula) {
    if (formula == Formula::plouffe) {
        return {"     inf   1  (  4      2      1      1   )", "Pi = SUM ---- ( ---- - ---- - ---- - ---- )",
                "     k=0 16^k ( 8k+1   8k+4   8k+5   8k+6 )"};
    }
    return {"     inf (-1)^k (   2^-1   2^-6    2^2      1     2^-4    2^-4    2^-6  )",
            "Pi = SUM ------ ( - ---- - ---- + ----- - ----- - ----- - ----- + ----- )",
            "     k=0 1024^k (   4k+1   4k+3   10k+1   10k+3   10k+5   10k+7   10k+9 )"};
}

std::vector<Term> terms(Formula formula, std::uint64_t offset) {
    const std::span<const Term> table =
        formula == Formula::plouffe ? std::span<const Term>(plouffe) : std::span<const Term>(bellard);
    std::vector<Term> raised(table.begin(), table.end());
    for (Term& term : raised) term.exponent += static_cast<std::int64_t>(4 * offset);
    return raised;
}

std::uint64_t terms_needed(Formula formula, std::uint64_t offset, std::uint64_t digits) {
    const std::uint64_t places = offset + guard_digits + digits;
    return formula == Formula::plouffe ? places : places * 4 / 20 + 1;
}

std::string text_of(const Term& term) {
    return "Frac( 1/(" + std::to_string(term.alpha) + "k + " + std::to_string(term.beta) + ") * 2^(" +
           std::to_string(term.step) + "k + " + std::to_string(term.exponent) + ") )";
}

}  // namespace kelvara::bbp
