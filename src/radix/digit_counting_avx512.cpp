// GCC 12 takes the deliberately undefined pass-through operands of its own AVX-512 intrinsics for errors.
#ifndef __clang__
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

// Counting with 512-bit vectors.
#include <immintrin.h>

#include "multiply/vectors/inline.h"
#include "radix/digit_counting_kernel.h"
#include "radix/digit_counting_levels.h"

namespace {

struct Bytes512 {
    using Vector = __m512i;
    static constexpr std::uint64_t bytes = 64;

    static KERNEL_INLINE Vector all(int v) { return _mm512_set1_epi8(static_cast<char>(v)); }
    static KERNEL_INLINE Vector every_group(const char* p) {
        return _mm512_broadcast_i32x4(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    }
    static KERNEL_INLINE Vector load(const char* p) { return _mm512_loadu_si512(p); }
    static KERNEL_INLINE Vector select(Vector table, Vector index) {
        return _mm512_shuffle_epi8(table, index);
    }
    static KERNEL_INLINE Vector add(Vector a, Vector b) { return _mm512_add_epi8(a, b); }
    static KERNEL_INLINE Vector add_saturated(Vector a, Vector b) { return _mm512_adds_epu8(a, b); }
    static KERNEL_INLINE Vector low_halves(Vector v) { return _mm512_and_si512(v, all(0x0f)); }
    static KERNEL_INLINE Vector high_halves(Vector v) { return low_halves(_mm512_srli_epi16(v, 4)); }
    static KERNEL_INLINE std::uint64_t sum(Vector v) {
        return static_cast<std::uint64_t>(_mm512_reduce_add_epi64(_mm512_sad_epu8(v, all(0))));
    }
};

}  // namespace

namespace qmp::radix {

const CountVectors count_vectors_avx512 = count_vectors<Bytes512>;

}  // namespace qmp::radix
