// Counting with 256-bit vectors.
#include <immintrin.h>

#include "multiply/vectors/inline.h"
#include "radix/digit_counting_kernel.h"
#include "radix/digit_counting_levels.h"

namespace {

struct Bytes256 {
    using Vector = __m256i;
    static constexpr std::uint64_t bytes = 32;

    static KERNEL_INLINE Vector all(int v) { return _mm256_set1_epi8(static_cast<char>(v)); }
    static KERNEL_INLINE Vector every_group(const char* p) {
        return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    }
    static KERNEL_INLINE Vector load(const char* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    static KERNEL_INLINE Vector select(Vector table, Vector index) {
        return _mm256_shuffle_epi8(table, index);
    }
    static KERNEL_INLINE Vector add(Vector a, Vector b) { return _mm256_add_epi8(a, b); }
    static KERNEL_INLINE Vector add_saturated(Vector a, Vector b) { return _mm256_adds_epu8(a, b); }
    static KERNEL_INLINE Vector low_halves(Vector v) { return _mm256_and_si256(v, all(0x0f)); }
    static KERNEL_INLINE Vector high_halves(Vector v) { return low_halves(_mm256_srli_epi16(v, 4)); }
    static KERNEL_INLINE std::uint64_t sum(Vector v) {
        const __m256i sums = _mm256_sad_epu8(v, all(0));
        const __m128i halves = _mm_add_epi64(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
        return static_cast<std::uint64_t>(_mm_cvtsi128_si64(halves)) +
               static_cast<std::uint64_t>(_mm_extract_epi64(halves, 1));
    }
};

}  // namespace

namespace qmp::radix {

const CountVectors count_vectors_avx2 = count_vectors<Bytes256>;

}  // namespace qmp::radix
