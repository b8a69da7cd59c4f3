// The schoolbook product: every word of one operand by every word of the other. On 64-bit words it runs on
// the kernels that suit the processor (schoolbook_kernels.h); all give the same words.
#pragma once

#include <cstdint>

namespace qmp {

// destination[0 .. LA + LB) = A * B; LA, LB >= 1, in either order. The destination overlaps no operand.
// W is std::uint64_t or std::uint32_t.
template <typename W>
void mulB(W* destination, const W* A, std::uint64_t LA, const W* B, std::uint64_t LB);
// destination[0 .. 2n) = A^2, n >= 1: the products of different words are formed once.
template <typename W>
void sqrB(W* destination, const W* A, std::uint64_t n);

extern template void mulB(std::uint64_t*, const std::uint64_t*, std::uint64_t, const std::uint64_t*,
                          std::uint64_t);
extern template void mulB(std::uint32_t*, const std::uint32_t*, std::uint64_t, const std::uint32_t*,
                          std::uint64_t);
extern template void sqrB(std::uint64_t*, const std::uint64_t*, std::uint64_t);
extern template void sqrB(std::uint32_t*, const std::uint32_t*, std::uint64_t);

}  // namespace qmp
