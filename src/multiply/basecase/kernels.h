// The basecase and Karatsuba kernels under the names that the build information lists: c64i on 64-bit
// words, c32i on 32-bit words. qmh_ names are the kernels, qmb_ names the entry points that the rest of
// the library calls; today each entry point has one kernel.
//
// Shapes and scratch as in schoolbook.h and karatsuba.h: ...B are schoolbook, sqr, elm and mul Karatsuba.
#pragma once

#include <cstdint>

namespace qmp {

#define QMP_MULB_FAMILY(family, W)                                                                           \
    void qmh_MULB_##family##_v0_sqrB_Default_mul64_u0(W* destination, const W* A, std::uint64_t n);          \
    void qmh_MULB_##family##_v0_elmB_Default_mul64_u0(W* destination, const W* A, const W* B,                \
                                                      std::uint64_t n);                                      \
    void qmh_MULB_##family##_v0_mulB_Default_mul64_u0(W* destination, const W* A, std::uint64_t LA,          \
                                                      const W* B, std::uint64_t LB);                         \
    void qmh_MULB_##family##_v0_sqrK_Default_u0(W* destination, const W* A, std::uint64_t n, W* scratch);    \
    void qmh_MULB_##family##_v0_elmK_Default_u0(W* destination, const W* A, const W* B, std::uint64_t n,     \
                                                W* scratch);                                                 \
    void qmh_MULB_##family##_v0_mulK_Default_u0(W* destination, const W* A, std::uint64_t LA, const W* B,    \
                                                std::uint64_t LB, W* scratch);                               \
    void qmb_MULB_##family##_sqrB(W* destination, const W* A, std::uint64_t n);                              \
    void qmb_MULB_##family##_elmB(W* destination, const W* A, const W* B, std::uint64_t n);                  \
    void qmb_MULB_##family##_mulB(W* destination, const W* A, std::uint64_t LA, const W* B,                  \
                                  std::uint64_t LB);                                                         \
    void qmb_MULB_##family##_sqr(W* destination, const W* A, std::uint64_t n, W* scratch);                   \
    void qmb_MULB_##family##_elm(W* destination, const W* A, const W* B, std::uint64_t n, W* scratch);       \
    void qmb_MULB_##family##_mul(W* destination, const W* A, std::uint64_t LA, const W* B, std::uint64_t LB, \
                                 W* scratch)

QMP_MULB_FAMILY(c64i, std::uint64_t);
QMP_MULB_FAMILY(c32i, std::uint32_t);

#undef QMP_MULB_FAMILY

}  // namespace qmp
