// Arithmetic on vectors of residues modulo a prime below 2^31, after Montgomery: products are divided
// by 2^32.
#pragma once

#include "multiply/ntt32/kernels/kernels.h"
#include "multiply/vectors/inline.h"

namespace {

using qmp::ntt32::Factor;
using qmp::ntt32::IndexTable;
using qmp::ntt32::Modulus;
using qmp::ntt32::Roots;
using qmp::ntt32::table_bits;
using qmp::ntt32::table_size;

template <typename V>
struct FactorVector {
    typename V::Narrow value;
    typename V::Narrow companion;
};

template <typename V>
struct Residues {
    using Narrow = typename V::Narrow;
    using Wide = typename V::Wide;
    using Multiplier = FactorVector<V>;

    Narrow prime;
    Narrow inverse;

    explicit KERNEL_INLINE Residues(const Modulus& modulus)
        : prime(V::set(modulus.prime)), inverse(V::set(modulus.inverse)) {}

    // x or x + p of -p < x < p; x or x - p of 0 <= x < 2p: whichever is small as an unsigned number.
    KERNEL_INLINE Narrow raised(Narrow x) const { return V::smaller(x, V::add(x, prime)); }
    KERNEL_INLINE Narrow lowered(Narrow x) const { return V::smaller(x, V::sub(x, prime)); }
    KERNEL_INLINE Narrow add(Narrow a, Narrow b) const { return lowered(V::add(a, b)); }
    KERNEL_INLINE Narrow sub(Narrow a, Narrow b) const { return raised(V::sub(a, b)); }
    // The same between 0 and 2p - 1, for operands of a product.
    KERNEL_INLINE Narrow add_lazy(Narrow a, Narrow b) const { return V::add(a, b); }
    KERNEL_INLINE Narrow sub_lazy(Narrow a, Narrow b) const { return V::add(V::sub(a, b), prime); }

    // Any a below 2^32: both high halves are below p.
    KERNEL_INLINE Narrow mul(Narrow a, const Multiplier& b) const {
        const Narrow quotient = V::mul_low(a, b.companion);
        return raised(V::high_of_difference(V::wide_mul(a, b.value), V::wide_mul(quotient, prime)));
    }
    // x < p 2^32
    KERNEL_INLINE Narrow reduce(Wide x) const {
        return raised(V::high_of_difference(x, V::wide_mul_low(V::wide_mul_low(x, inverse), prime)));
    }
    KERNEL_INLINE Narrow mul(Narrow a, Narrow b) const { return reduce(V::wide_mul(a, b)); }
    KERNEL_INLINE Multiplier multiplier(Narrow value) const { return {value, V::mul_low(value, inverse)}; }
};

template <typename V>
KERNEL_INLINE FactorVector<V> broadcast(const Factor& factor) {
    return {V::set(factor.value), V::set(factor.companion)};
}

KERNEL_INLINE std::uint32_t mul_one(std::uint32_t a, std::uint32_t b, const Modulus& modulus) {
    const std::uint64_t product = std::uint64_t{a} * b;
    const std::uint32_t quotient = static_cast<std::uint32_t>(product) * modulus.inverse;
    const std::uint32_t high = static_cast<std::uint32_t>(product >> 32);
    const std::uint32_t taken = static_cast<std::uint32_t>((std::uint64_t{quotient} * modulus.prime) >> 32);
    return high - taken + (high < taken ? modulus.prime : 0);
}

// f(index)
KERNEL_INLINE Factor look_up(const IndexTable& table, std::uint64_t index, const Modulus& modulus) {
    const std::uint64_t low = index % table_size;
    if (index < table_size) return {table.low[low], table.low_companion[low]};
    const std::uint32_t value = mul_one(table.low[low], table.high[index >> table_bits], modulus);
    return {value, value * modulus.inverse};
}

// f(index) ... f(index + lanes - 1), as far as they have index / table_size in common.
template <typename V>
KERNEL_INLINE FactorVector<V> look_up_vector(const IndexTable& table, std::uint64_t index,
                                             const Residues<V>& residues) {
    const std::uint64_t low = index % table_size;
    const auto values = V::load(table.low + low);
    if (index < table_size) return {values, V::load(table.low_companion + low)};
    return residues.multiplier(residues.mul(values, V::set(table.high[index >> table_bits])));
}

}  // namespace
