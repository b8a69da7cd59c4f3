#include <immintrin.h>

#include "platform/sha2_constants.h"
#include "platform/sha256_kernels.h"

namespace qmp {
namespace {

__m128i load(const void* from) {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

void store(void* to, __m128i value) {
    _mm_storeu_si128(static_cast<__m128i*>(to), value);
}

// The instructions keep the state a to h as the words f e b a and h g d c, lowest first.
void compress(std::uint32_t* state, const std::uint8_t* blocks, std::size_t count) {
    const __m128i reversed_bytes = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
    const __m128i badc = _mm_shuffle_epi32(load(state), 0xb1);
    const __m128i hgfe = _mm_shuffle_epi32(load(state + 4), 0x1b);
    __m128i feba = _mm_alignr_epi8(badc, hgfe, 8);
    __m128i hgdc = _mm_blend_epi16(hgfe, badc, 0xf0);

    for (; count > 0; --count, blocks += sha256_block_size) {
        const __m128i feba_before = feba, hgdc_before = hgdc;
        __m128i schedule[4];
        // Four rounds at a time.
#pragma GCC unroll 16
        for (int i = 0; i < 16; ++i) {
            __m128i& words = schedule[i % 4];
            if (i < 4) {
                words = _mm_shuffle_epi8(load(blocks + 16 * i), reversed_bytes);
            } else {
                const __m128i newest = schedule[(i + 3) % 4];
                words = _mm_sha256msg1_epu32(words, schedule[(i + 1) % 4]);
                words = _mm_add_epi32(words, _mm_alignr_epi8(newest, schedule[(i + 2) % 4], 4));
                words = _mm_sha256msg2_epu32(words, newest);
            }
            const __m128i sum = _mm_add_epi32(words, load(sha256_round_constants.words + 4 * i));
            hgdc = _mm_sha256rnds2_epu32(hgdc, feba, sum);
            feba = _mm_sha256rnds2_epu32(feba, hgdc, _mm_shuffle_epi32(sum, 0x0e));
        }
        feba = _mm_add_epi32(feba, feba_before);
        hgdc = _mm_add_epi32(hgdc, hgdc_before);
    }

    const __m128i abef = _mm_shuffle_epi32(feba, 0x1b);
    const __m128i ghcd = _mm_shuffle_epi32(hgdc, 0xb1);
    store(state, _mm_blend_epi16(abef, ghcd, 0xf0));
    store(state + 4, _mm_alignr_epi8(ghcd, abef, 8));
}

}  // namespace

const Sha256Compression sha256_compression_sha = compress;

}  // namespace qmp
