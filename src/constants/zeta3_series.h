// The series for Zeta(3) by Amdeberhan and Zeilberger.
#pragma once

#include <cstdint>

#include "constants/series_computation.h"
#include "numbers/basic_int.h"

namespace kelvara {

// By algorithm index of the catalogue: long, short.
const SeriesFormula& zeta3_formula(std::uint32_t algorithm);

// The kernels of single terms, index k >= 1. Capacities in words, long: R 8, P 14, Q 9; short: R 5, P 8, Q 5
// (BufferTooSmallException in the kernel's name).
void Zeta3_AZ2_BSR_End_R1(qmp::BasicInt& R, std::uint64_t k);
// P = R (126392 k^5 + ...), R of the same index.
void Zeta3_AZ2_BSR_End_P1(qmp::BasicInt& P, const qmp::BasicInt& R, std::uint64_t k);
void Zeta3_AZ2_BSR_End_Q1(qmp::BasicInt& Q, std::uint64_t k);
void Zeta3_AZ1_BSR_End1(qmp::BasicInt& P, qmp::BasicInt& Q, qmp::BasicInt& R, std::uint64_t k);

}  // namespace kelvara
