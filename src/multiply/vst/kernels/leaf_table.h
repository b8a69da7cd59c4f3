// What a leaf's factors are made of: roots for the layers above its last ones, and the twist.
//
// The last log V layers, V the lanes, are done modulo x^V - 1, with roots of unity for factors: a chunk of V
// points modulo x^V - e(c) is twisted, coefficient k multiplied by e(c k / V), first. With the chunk's angle
// c = f(b) + a / 2^l, f(b) the same for all leaves, that is a table's number times the k-th power of e(a /
// 2^(l + log V)), and this power, one number for each lane, goes into the factors of the leaf's first layer.
//
// A leaf's table: the values of the nodes' factors for the layers before the last ones (2^(length - log V) of
// them), then their quotients; then the two factors of the first layer's inputs, as vectors of values and
// quotients.
#pragma once

#include "multiply/vst/kernels/columns.h"

namespace {

template <typename V>
constexpr int log_lanes = V::lanes == 2   ? 1
                          : V::lanes == 4 ? 2
                                          : 3;

template <typename V>
void square_chain(double* powers, const double* numbers, std::uint64_t count, int steps,
                  const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    for (std::uint64_t i = 0; i < count; i += V::lanes) {
        typename V::Real x = V::load(numbers + i);
        for (int step = 0; step < steps; ++step) {
            V::store(powers + static_cast<std::uint64_t>(step) * count + i, x);
            x = m.reduce(m.multiply(x, x));
        }
    }
}

template <typename V>
void scale(double* products, const double* x, double y, std::uint64_t count,
           const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    const Factor<V> factor = m.factor(V::set(y));
    for (std::uint64_t i = 0; i < count; i += V::lanes) {
        V::store(products + i, m.reduce(m.multiply(V::load(x + i), factor)));
    }
}

template <typename V>
KERNEL_INLINE void store_factors(double* values, double* quotients, const double* base, const Factor<V>& rho,
                                 const Modulus<V>& m) {
    const Factor<V> w = m.factor(m.reduce(m.multiply(V::load(base), rho)));
    V::store(values, w.value);
    V::store(quotients, w.quotient);
}

// Lanes whose number has bit j, and lanes 2^j to 2^(j + 1) - 1: there 1, elsewhere 0.
alignas(64) constexpr double lanes_of_bit[3][8] = {
    {0, 1, 0, 1, 0, 1, 0, 1}, {0, 0, 1, 1, 0, 0, 1, 1}, {0, 0, 0, 0, 1, 1, 1, 1}};
alignas(64) constexpr double lanes_of_range[3][8] = {
    {0, 1, 0, 0, 0, 0, 0, 0}, {0, 0, 1, 1, 0, 0, 0, 0}, {0, 0, 0, 0, 1, 1, 1, 1}};

// The k-th power of tau for lane k, times the scale: tau = rho[last * stride], its squares before it.
template <typename V>
KERNEL_INLINE Factor<V> twist_of(const double* rho, std::ptrdiff_t stride, int last, double scale,
                                 const Modulus<V>& m) {
    const auto power = [=](int j) KERNEL_INLINE_LAMBDA {
        return V::mul_add(V::load(lanes_of_bit[j]), V::set(rho[(last - j) * stride] - 1), V::set(1));
    };
    // As few products one after the other as can be.
    typename V::Real twist = m.multiply(power(0), m.factor(V::set(scale)));
    if constexpr (log_lanes<V> == 2) twist = m.multiply(twist, m.factor(power(1)));
    if constexpr (log_lanes<V> == 3) {
        twist = m.multiply(twist, m.factor(m.multiply(power(1), m.factor(power(2)))));
    }
    return m.factor(m.reduce(twist));
}

template <typename V>
KERNEL_INLINE void store_factor(double* table, const Factor<V>& w) {
    V::store(table, w.value);
    V::store(table + V::lanes, w.quotient);
}

template <typename V>
void leaf_table(double* table, const qmp::vst::LeafBase& base, int log_length, const double* rho,
                std::ptrdiff_t stride, double scale, const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    const int across = log_length - log_lanes<V>;
    const std::uint64_t nodes = std::uint64_t{1} << across;
    constexpr std::uint64_t lanes = V::lanes;

    // The long chain of dependent operations first.
    const Factor<V> twist = twist_of<V>(rho, stride, log_length - 1, scale, m);
    store_factor<V>(table + 2 * nodes, twist);
    store_factor<V>(table + 2 * nodes + 2 * lanes,
                    m.factor(m.reduce(m.multiply(twist.value, m.factor(V::set(rho[0]))))));

    // The layers of fewer nodes than lanes share a vector.
    typename V::Real first = V::set(0);
    for (int l = 0; l < log_lanes<V>; ++l) {
        first = V::mul_add(V::load(lanes_of_range[l]), V::set(rho[l * stride]), first);
    }
    store_factors<V>(table, table + nodes, base.nodes, m.factor(first), m);
    for (int l = log_lanes<V>; l < across; ++l) {
        const Factor<V> factor = m.factor(V::set(rho[l * stride]));
        for (std::uint64_t i = std::uint64_t{1} << l; i < std::uint64_t{2} << l; i += lanes) {
            store_factors<V>(table + i, table + nodes + i, base.nodes + i, factor, m);
        }
    }
}

// The table as the leaf's layers read it.
template <typename V>
struct LeafFactors {
    int across;
    qmp::vst::NodeFactors nodes;
    const double* twist;

    KERNEL_INLINE LeafFactors(const double* table, int log_length)
        : across(log_length - log_lanes<V>),
          nodes{table, table + (std::uint64_t{1} << across)},
          twist(table + (std::uint64_t{2} << across)) {}
    // Of the first (0) and the second half (1) of the points.
    KERNEL_INLINE Factor<V> first_layer(int half) const {
        const double* at = twist + 2 * half * V::lanes;
        return {V::load(at), V::load(at + V::lanes)};
    }
};

}  // namespace
