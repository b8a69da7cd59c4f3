#include "radix/digit_counting.h"

#include <emmintrin.h>

#include "multiply/instruction_levels.h"
#include "multiply/vectors/inline.h"
#include "radix/digit_counting_kernel.h"
#include "radix/digit_counting_levels.h"

namespace {

// Every x86-64 processor has these.
struct Bytes128 {
    using Vector = __m128i;
    static constexpr std::uint64_t bytes = 16;

    static KERNEL_INLINE Vector zero() { return _mm_setzero_si128(); }
    static KERNEL_INLINE Vector all(int v) { return _mm_set1_epi8(static_cast<char>(v)); }
    static KERNEL_INLINE Vector load(const char* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    static KERNEL_INLINE Vector equal(Vector a, Vector b) { return _mm_cmpeq_epi8(a, b); }
    static KERNEL_INLINE Vector subtract(Vector a, Vector b) { return _mm_sub_epi8(a, b); }
    static KERNEL_INLINE std::uint64_t sum(Vector v) {
        const __m128i sums = _mm_sad_epu8(v, zero());
        return static_cast<std::uint64_t>(_mm_cvtsi128_si64(sums)) +
               static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_srli_si128(sums, 8)));
    }
};

}  // namespace

namespace qmp::radix {

const CountVectors count_vectors_sse2 = count_vectors<Bytes128>;

void count_digits(DigitCounts& counts, const char* values, std::uint64_t n, std::uint32_t radix) {
    const bool wide = current_level() <= InstructionLevel::avx2;
    const std::uint64_t counted =
        (wide ? count_vectors_avx2 : count_vectors_sse2)(counts.data(), values, n, radix);
    for (std::uint64_t i = counted; i < n; ++i) {
        const auto v = static_cast<unsigned char>(values[i]);
        if (v < radix) ++counts[v];
    }
}

}  // namespace qmp::radix
