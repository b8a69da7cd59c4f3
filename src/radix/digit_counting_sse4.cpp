// Counting with 128-bit vectors.
#include <tmmintrin.h>

#include "multiply/vectors/inline.h"
#include "radix/digit_counting_kernel.h"
#include "radix/digit_counting_levels.h"

namespace {

struct Bytes128 {
    using Vector = __m128i;
    static constexpr std::uint64_t bytes = 16;

    static KERNEL_INLINE Vector all(int v) { return _mm_set1_epi8(static_cast<char>(v)); }
    static KERNEL_INLINE Vector load(const char* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    static KERNEL_INLINE Vector every_group(const char* p) { return load(p); }
    static KERNEL_INLINE Vector select(Vector table, Vector index) { return _mm_shuffle_epi8(table, index); }
    static KERNEL_INLINE Vector add(Vector a, Vector b) { return _mm_add_epi8(a, b); }
    static KERNEL_INLINE Vector add_saturated(Vector a, Vector b) { return _mm_adds_epu8(a, b); }
    static KERNEL_INLINE Vector low_halves(Vector v) { return _mm_and_si128(v, all(0x0f)); }
    static KERNEL_INLINE Vector high_halves(Vector v) { return low_halves(_mm_srli_epi16(v, 4)); }
    static KERNEL_INLINE std::uint64_t sum(Vector v) {
        const __m128i sums = _mm_sad_epu8(v, all(0));
        return static_cast<std::uint64_t>(_mm_cvtsi128_si64(sums)) +
               static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_srli_si128(sums, 8)));
    }
};

}  // namespace

namespace qmp::radix {

const CountVectors count_vectors_sse4 = count_vectors<Bytes128>;

}  // namespace qmp::radix
