// Karatsuba products above a small threshold, schoolbook below it.
//
// Lengths are in words of type W, std::uint64_t or std::uint32_t, and at least 1. Destinations overlap
// neither an operand nor the scratch. Scratch comes from the caller: nothing here allocates, and every
// level takes its own part at a fixed offset.
#pragma once

#include <cstdint>
#include <type_traits>

namespace qmp {

// Lengths of one operand, in its own words, from which Karatsuba is used. Read at every call; at least 2.
// Writing them while products run on other threads is not allowed.
extern std::uint64_t c64i_sqr_threshold;
extern std::uint64_t c64i_mul_threshold;
extern std::uint64_t c32i_sqr_threshold;
extern std::uint64_t c32i_mul_threshold;

// In line: every short product asks.
template <typename W>
inline std::uint64_t karatsuba_square_threshold() {
    return std::is_same_v<W, std::uint64_t> ? c64i_sqr_threshold : c32i_sqr_threshold;
}
template <typename W>
inline std::uint64_t karatsuba_product_threshold() {
    return std::is_same_v<W, std::uint64_t> ? c64i_mul_threshold : c32i_mul_threshold;
}

// destination[0 .. 2n) = A * B, both of n words. Scratch: elmK_scratch.
template <typename W>
void elmK(W* destination, const W* A, const W* B, std::uint64_t n, W* scratch);
// destination[0 .. 2n) = A^2. Scratch: sqrK_scratch.
template <typename W>
void sqrK(W* destination, const W* A, std::uint64_t n, W* scratch);
// destination[0 .. LA + LB) = A * B, of any lengths in either order. Scratch: mulK_scratch.
template <typename W>
void mulK(W* destination, const W* A, std::uint64_t LA, const W* B, std::uint64_t LB, W* scratch);

// Scratch words that these operations write.
template <typename W>
std::uint64_t elmK_scratch(std::uint64_t n);
template <typename W>
std::uint64_t sqrK_scratch(std::uint64_t n);
template <typename W>
std::uint64_t mulK_scratch(std::uint64_t LA, std::uint64_t LB);

// K(n): bytes that serve every product and square of up to n words per operand, and so every product of n
// words. Never decreases with n.
template <typename W>
std::uint64_t karatsuba_scratch_bytes(std::uint64_t n);

#define QMP_KARATSUBA(PREFIX, W)                                                            \
    PREFIX template void elmK<W>(W*, const W*, const W*, std::uint64_t, W*);                \
    PREFIX template void sqrK<W>(W*, const W*, std::uint64_t, W*);                          \
    PREFIX template void mulK<W>(W*, const W*, std::uint64_t, const W*, std::uint64_t, W*); \
    PREFIX template std::uint64_t elmK_scratch<W>(std::uint64_t);                           \
    PREFIX template std::uint64_t sqrK_scratch<W>(std::uint64_t);                           \
    PREFIX template std::uint64_t mulK_scratch<W>(std::uint64_t, std::uint64_t);            \
    PREFIX template std::uint64_t karatsuba_scratch_bytes<W>(std::uint64_t)

QMP_KARATSUBA(extern, std::uint64_t);
QMP_KARATSUBA(extern, std::uint32_t);

}  // namespace qmp
