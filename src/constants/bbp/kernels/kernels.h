// The inner loops of the digit extractor: digits of many fractions 2^e / m, added up.
//
// A digit here has 48 bits. Of every term the digits are those of floor(2^(48 chunks) * frac(2^e / m)),
// exactly, so the sums are the same on every instruction-set level and in every order. NUMERICS.md has the
// proof.
#pragma once

#include <cstdint>

namespace kelvara::bbp {

constexpr int chunk_bits = 48;
// Every modulus of a power is odd and below 2^49.
constexpr std::uint64_t modulus_limit = std::uint64_t{1} << 49;
// Terms of one sum that fit 64 bits without loss.
constexpr std::uint64_t most_terms_of_sums = 10000;

// Terms i = 0, 1, ..., count - 1 with the moduli modulus + i * modulus_step, exact in doubles, and the
// exponents that exponent + i * exponent_step (modulo 2^64) stands for.
struct TermRun {
    double modulus = 1;
    double modulus_step = 0;
    // Of powers: e * 2^(52 - squarings), e >= 1; e / 2^squarings is below 64, and below 32 where the first
    // modulus is below 2^13. Of small terms: the bits of the double 2^(e + 48 first_chunk), e <= 0, which is
    // at most 1 and for the first term above 2^-48; exponents fall by at most 20 a term.
    std::uint64_t exponent = 0;
    std::uint64_t exponent_step = 0;
    int squarings = 0;
    std::uint64_t count = 0;
    // All digits before it are 0.
    std::uint64_t first_chunk = 0;
};

// Both functions add the digits of the run's terms to sums of `chunks` rows of `lanes` integers modulo 2^64,
// the most significant digit first. A row's sum over its lanes, as a signed number, is what counts.
struct Kernels {
    const char* name;
    std::uint64_t lanes;
    // Of a run of small terms; a run of powers may have any number.
    std::uint64_t most_small_terms;
    void (*add_powers)(const TermRun& run, std::uint64_t chunks, std::uint64_t* sums);
    void (*add_small_terms)(const TermRun& run, std::uint64_t chunks, std::uint64_t* sums);
};

constexpr std::uint64_t most_lanes = 8;

extern const Kernels kernels_avx512, kernels_avx2, kernels_fma4, kernels_sse2, kernels_scalar;

}  // namespace kelvara::bbp
