// The sizes of the hybrid transform: 2^k points, in a ring modulo 2^(32 n) + 1 with n = m 2^k / 128.
//
// A point has 32 (n/2 - 1) bits, so that a coefficient of a product, below 2^(32 n - 64 + k), is a residue of
// the ring by itself. There 2 is a root of unity of order 64 n = m 2^(k-1), and its square root of order
// m 2^k: its m-th power is the root for 2^k points, a power of two for every even m. Listed sizes have n a
// multiple of 4: residues are n/2 words, in pairs.
#pragma once

#include <cstdint>
#include <span>

namespace qmp::hybrid_ntt {

struct HybridRow {
    std::uint8_t k;
    std::uint16_t m;

    bool operator==(const HybridRow&) const = default;
};

struct HybridParams {
    std::uint32_t k;
    std::uint32_t m;
    std::uint64_t n;              // 32-bit words of a residue, without its carry word
    std::uint64_t residue_words;  // n + 1, of 32 bits
    std::uint64_t point_words;    // n/2 - 1, of 32 bits
    std::uint64_t capacity_bits;  // (n/2 - 1) * 32 * 2^k

    std::uint64_t points() const { return std::uint64_t{1} << k; }
    bool operator==(const HybridParams&) const = default;
};

constexpr HybridParams make_params(std::uint32_t k, std::uint32_t m) {
    const std::uint64_t n = (std::uint64_t{m} << k) / 128;
    return {k, m, n, n + 1, n / 2 - 1, (n / 2 - 1) * 32 << k};
}

// The two lists, strictly increasing in capacity: the first one is tuned for this build's processor and
// searched first, the standard one reaches further.
std::span<const HybridRow> specialised_list();
std::span<const HybridRow> standard_list();

// The listed size for products of `bits` bits. LimitExceededException above hex 9FFF8000000 bits.
HybridParams hybrid_params(std::uint64_t bits);
// The search of the standard list alone.
HybridParams standard_params(std::uint64_t bits);

}  // namespace qmp::hybrid_ntt
