#include "support/residues_reference.h"

#include <algorithm>

namespace kelvara_test {
namespace {

using qmp::Word;

// Blocks of n words as digits of radix R^n: their sum, with alternating signs modulo R^n + 1. `carry` is
// the part of the residue above the n words, kept small.
ReferenceResidue residue(const std::vector<Word>& number, std::uint64_t n, bool negacyclic) {
    std::vector<Word> words(n, 0);
    std::int64_t carry = 0;
    for (std::uint64_t i = 0; i < number.size(); ++i) {
        const bool subtract = negacyclic && (i / n) % 2 == 1;
        Word amount = number[i];
        for (std::uint64_t at = i % n; amount != 0; ++at) {
            if (at == n) {
                carry += subtract ? -1 : 1;
                break;
            }
            const Word before = words[at];
            words[at] = subtract ? before - amount : before + amount;
            amount = subtract ? before < amount : words[at] < before;
        }
    }
    // R^n is 1, or -1.
    while (carry != 0) {
        const bool up = (carry > 0) != negacyclic;
        carry -= carry > 0 ? 1 : -1;
        std::uint64_t at = 0;
        while (at < n && words[at] == (up ? ~Word{0} : 0)) words[at++] = up ? 0 : ~Word{0};
        if (at < n) {
            words[at] += up ? 1 : ~Word{0};
        } else if (up && negacyclic && carry == 0) {
            return {words, true};
        } else {
            carry += up ? 1 : -1;
        }
    }
    const bool ones = std::all_of(words.begin(), words.end(), [](Word w) { return w == ~Word{0}; });
    if (ones && !negacyclic) std::fill(words.begin(), words.end(), 0);
    return {words, false};
}

}  // namespace

ReferenceResidue cyclic_residue(const std::vector<Word>& number, std::uint64_t n) {
    return residue(number, n, false);
}

ReferenceResidue negacyclic_residue(const std::vector<Word>& number, std::uint64_t n) {
    return residue(number, n, true);
}

}  // namespace kelvara_test
