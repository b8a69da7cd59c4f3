#include "multiply/basecase/kernels.h"

#include "multiply/basecase/karatsuba.h"
#include "multiply/basecase/schoolbook.h"

namespace qmp {

#define QMP_MULB_FAMILY(family, W)                                                                           \
    void qmh_MULB_##family##_v0_sqrB_Default_mul64_u0(W* destination, const W* A, std::uint64_t n) {         \
        sqrB(destination, A, n);                                                                             \
    }                                                                                                        \
    void qmh_MULB_##family##_v0_elmB_Default_mul64_u0(W* destination, const W* A, const W* B,                \
                                                      std::uint64_t n) {                                     \
        mulB(destination, A, n, B, n);                                                                       \
    }                                                                                                        \
    void qmh_MULB_##family##_v0_mulB_Default_mul64_u0(W* destination, const W* A, std::uint64_t LA,          \
                                                      const W* B, std::uint64_t LB) {                        \
        mulB(destination, A, LA, B, LB);                                                                     \
    }                                                                                                        \
    void qmh_MULB_##family##_v0_sqrK_Default_u0(W* destination, const W* A, std::uint64_t n, W* scratch) {   \
        sqrK(destination, A, n, scratch);                                                                    \
    }                                                                                                        \
    void qmh_MULB_##family##_v0_elmK_Default_u0(W* destination, const W* A, const W* B, std::uint64_t n,     \
                                                W* scratch) {                                                \
        elmK(destination, A, B, n, scratch);                                                                 \
    }                                                                                                        \
    void qmh_MULB_##family##_v0_mulK_Default_u0(W* destination, const W* A, std::uint64_t LA, const W* B,    \
                                                std::uint64_t LB, W* scratch) {                              \
        mulK(destination, A, LA, B, LB, scratch);                                                            \
    }                                                                                                        \
    void qmb_MULB_##family##_sqrB(W* destination, const W* A, std::uint64_t n) {                             \
        qmh_MULB_##family##_v0_sqrB_Default_mul64_u0(destination, A, n);                                     \
    }                                                                                                        \
    void qmb_MULB_##family##_elmB(W* destination, const W* A, const W* B, std::uint64_t n) {                 \
        qmh_MULB_##family##_v0_elmB_Default_mul64_u0(destination, A, B, n);                                  \
    }                                                                                                        \
    void qmb_MULB_##family##_mulB(W* destination, const W* A, std::uint64_t LA, const W* B,                  \
                                  std::uint64_t LB) {                                                        \
        qmh_MULB_##family##_v0_mulB_Default_mul64_u0(destination, A, LA, B, LB);                             \
    }                                                                                                        \
    void qmb_MULB_##family##_sqr(W* destination, const W* A, std::uint64_t n, W* scratch) {                  \
        qmh_MULB_##family##_v0_sqrK_Default_u0(destination, A, n, scratch);                                  \
    }                                                                                                        \
    void qmb_MULB_##family##_elm(W* destination, const W* A, const W* B, std::uint64_t n, W* scratch) {      \
        qmh_MULB_##family##_v0_elmK_Default_u0(destination, A, B, n, scratch);                               \
    }                                                                                                        \
    void qmb_MULB_##family##_mul(W* destination, const W* A, std::uint64_t LA, const W* B, std::uint64_t LB, \
                                 W* scratch) {                                                               \
        qmh_MULB_##family##_v0_mulK_Default_u0(destination, A, LA, B, LB, scratch);                          \
    }

QMP_MULB_FAMILY(c64i, std::uint64_t)
QMP_MULB_FAMILY(c32i, std::uint32_t)

}  // namespace qmp
