// Products of up to 2n words from two convolutions of n words: one modulo R^n - 1 and one modulo R^n + 1,
// R = 2^64, put together by the Chinese remainder theorem. Half the transform length, half the memory.
#pragma once

#include <cstdint>

#include "multiply/negacyclic_parameters.h"

namespace qmp {

// Scratch, in words, of CRT_mulp with this parameter object, for words of either width.
std::uint64_t crt_mulp_scratch_words(const NegacyclicParameters& params);

// destination[0 .. end - first) = the words [first, end) of a * b, all exact; la, lb >= 1, in either order,
// end <= la + lb. A square when the operands are the same words. W is std::uint64_t or std::uint32_t.
// The program stops when the convolution is not a whole number of words or shorter than half of la + lb.
// BufferTooSmallException when the context's scratch is shorter than crt_mulp_scratch_words().
template <typename W>
void CRT_mulp(const MultiplyContext& context, const NegacyclicParameters& params, W* destination,
              std::uint64_t first, std::uint64_t end, const W* a, std::uint64_t la, const W* b,
              std::uint64_t lb);

extern template void CRT_mulp<std::uint64_t>(const MultiplyContext&, const NegacyclicParameters&,
                                             std::uint64_t*, std::uint64_t, std::uint64_t,
                                             const std::uint64_t*, std::uint64_t, const std::uint64_t*,
                                             std::uint64_t);
extern template void CRT_mulp<std::uint32_t>(const MultiplyContext&, const NegacyclicParameters&,
                                             std::uint32_t*, std::uint64_t, std::uint64_t,
                                             const std::uint32_t*, std::uint64_t, const std::uint32_t*,
                                             std::uint64_t);

}  // namespace qmp
