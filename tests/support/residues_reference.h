// Residues modulo R^n - 1 and R^n + 1, R = 2^64, one word at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "multiply/word.h"

namespace kelvara_test {

// A residue in n words; modulo R^n + 1, `degenerate` stands for R^n (all words zero).
struct ReferenceResidue {
    std::vector<qmp::Word> words;
    bool degenerate = false;

    bool operator==(const ReferenceResidue&) const = default;
};

// Of a number of any length. The least one: 0, never R^n - 1.
ReferenceResidue cyclic_residue(const std::vector<qmp::Word>& number, std::uint64_t n);
ReferenceResidue negacyclic_residue(const std::vector<qmp::Word>& number, std::uint64_t n);

}  // namespace kelvara_test
