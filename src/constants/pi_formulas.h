// The series for pi: Chudnovsky's and Ramanujan's.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "numbers/basic_int.h"
#include "series/bss_p2b3_type0.h"

namespace kelvara {

// pi = d Q / (w Q +- P) / sqrt(r), where P/Q is the sum of the terms from index 1 on.
struct PiFormula {
    const qmp::BSS_P2B3_Type0& series;
    bool negative;  // that sum is negative
    qmp::Word w;    // the term of index 0
    qmp::Word d;
    qmp::Word r;
    bool reduced;  // half-sized blocks and a final product with half-length transforms
    const char* short_name;
    const char* long_name;
};

// By algorithm index of the catalogue, 0 to 3.
const PiFormula& pi_formula(std::uint32_t algorithm);

// The kernels of single terms, index k >= 1. Capacities in words: R 3, P 5, Q 4 (BufferTooSmallException in
// the kernel's name).
void Pi_Chudnovsky_BSR_End_PR1(qmp::BasicInt& P, qmp::BasicInt& R, std::uint64_t k);
void Pi_Chudnovsky_BSR_End_Q1(qmp::BasicInt& Q, std::uint64_t k);
void Pi_Ramanujan_BSR_End_R1(qmp::BasicInt& R, std::uint64_t k);
// P = R (26390 k + 1103).
void Pi_Ramanujan_BSR_End_P1(qmp::BasicInt& P, const qmp::BasicInt& R, std::uint64_t k);
void Pi_Ramanujan_BSR_End_Q1(qmp::BasicInt& Q, std::uint64_t k);

}  // namespace kelvara
