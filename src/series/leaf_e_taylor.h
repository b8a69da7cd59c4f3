// Leaves of the Taylor series of exp(1) and exp(-1).
#pragma once

#include <cstdint>

#include "numbers/basic_int.h"

namespace qmp {

// The kernels for the terms of exp(1) and exp(-1): 2 <= b - a; one word of P and of Q per term
// (BufferTooSmallException in the kernel's name).
void E_TaylorN_BSR_End_PQ1(BasicInt& P, BasicInt& Q, std::uint64_t a, std::uint64_t b);
void E_TaylorA_BSR_End_PQ1(BasicInt& P, BasicInt& Q, std::uint64_t a, std::uint64_t b);

// Ranges of up to 15 terms, of exp(-1) when `alternating`: the kernels, for halves where the range is long
// and its terms take whole words.
void sum_e_taylor_leaf(bool alternating, BasicInt& P, BasicInt& Q, std::uint64_t a, std::uint64_t b);

}  // namespace qmp
