// Catalan's constant by Lupas' series: G = (19 Q - P) / (18 Q).
#pragma once

#include <cstdint>

#include "constants/series_computation.h"
#include "numbers/basic_int.h"

namespace kelvara {

const SeriesFormula& catalan_lupas_formula();

// The kernel of single terms, index k >= 1. Capacities in words: P 7, Q and R 4 (BufferTooSmallException in
// the kernel's name).
void Catalan_Lupas_BSR_End1(qmp::BasicInt& P, qmp::BasicInt& Q, qmp::BasicInt& R, std::uint64_t k);

}  // namespace kelvara
