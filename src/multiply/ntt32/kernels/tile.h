// The innermost L^2 residues of a row, from one node to its leaves, in registers.
#pragma once

#include "multiply/ntt32/kernels/residues.h"

namespace {

// Factors of the nodes inside a tile: of node 2^l j + u at place 2^l + u, l < log2 L.
template <typename V>
struct TileFactors {
    alignas(64) std::uint32_t values[2 * V::lanes];
    alignas(64) std::uint32_t companions[2 * V::lanes];

    KERNEL_INLINE TileFactors(const IndexTable& table, std::uint64_t node, const Residues<V>& residues) {
        // Each vector overwrites what the one before has too many.
        for (int l = 0; l < V::log_lanes; ++l) {
            const auto factors = look_up_vector<V>(table, node << l, residues);
            V::store(values + (1 << l), factors.value);
            V::store(companions + (1 << l), factors.companion);
        }
    }
    KERNEL_INLINE FactorVector<V> at(int place) const {
        return {V::set(values[place]), V::set(companions[place])};
    }
};

// Of the nodes modulo z^L - 1: their factors are those of node 0.
template <typename V>
struct PlainFactors {
    const IndexTable& table;

    KERNEL_INLINE FactorVector<V> at(int place) const {
        int first = 1;
        while (2 * first <= place) first *= 2;
        return {V::set(table.low[place - first]), V::set(table.low_companion[place - first])};
    }
};

// Takes x[0 .. L) apart, or puts it together: L vectors that are the coefficients of one node (in every lane,
// or across all of them). With `Plain` the first node at each depth has the factor 1.
template <typename V, bool Plain, typename Factors>
KERNEL_INLINE void split_vectors(typename V::Narrow (&x)[V::lanes], const Factors& factors,
                                 const Residues<V>& residues) {
    KERNEL_UNROLL(4)
    for (int l = 0; l < V::log_lanes; ++l) {
        const int half = V::lanes >> (l + 1);
        KERNEL_UNROLL(8)
        for (int u = 0; u < 1 << l; ++u) {
            const auto factor = factors.at((1 << l) + u);
            KERNEL_UNROLL(8)
            for (int i = 0; i < half; ++i) {
                auto& a = x[2 * half * u + i];
                auto& b = x[2 * half * u + half + i];
                const auto t = Plain && u == 0 ? b : residues.mul(b, factor);
                b = residues.sub(a, t);
                a = residues.add(a, t);
            }
        }
    }
}

template <typename V, bool Plain, typename Factors>
KERNEL_INLINE void join_vectors(typename V::Narrow (&x)[V::lanes], const Factors& factors,
                                const Residues<V>& residues) {
    KERNEL_UNROLL(4)
    for (int l = V::log_lanes - 1; l >= 0; --l) {
        const int half = V::lanes >> (l + 1);
        KERNEL_UNROLL(8)
        for (int u = 0; u < 1 << l; ++u) {
            const auto factor = factors.at((1 << l) + u);
            KERNEL_UNROLL(8)
            for (int i = 0; i < half; ++i) {
                auto& a = x[2 * half * u + i];
                auto& b = x[2 * half * u + half + i];
                const auto difference = residues.sub_lazy(a, b);
                a = residues.add(a, b);
                b = Plain && u == 0 ? residues.lowered(difference) : residues.mul(difference, factor);
            }
        }
    }
}

// x[e] times the e-th power of D of every lane's node.
template <typename V>
KERNEL_INLINE void twist_vectors(typename V::Narrow (&x)[V::lanes], const IndexTable& table,
                                 std::uint64_t node, const Residues<V>& residues) {
    if constexpr (V::lanes > 1) {
        typename V::Narrow powers[V::lanes];
        powers[1] = look_up_vector<V>(table, node, residues).value;
        x[1] = residues.mul(x[1], powers[1]);
        KERNEL_UNROLL(16)
        for (int e = 2; e < V::lanes; ++e) {
            powers[e] = residues.mul(powers[e / 2], powers[e - e / 2]);
            x[e] = residues.mul(x[e], powers[e]);
        }
    }
}

// node j at the depth of L^2 coefficients
template <typename V>
KERNEL_INLINE void forward_tile(std::uint32_t* tile, std::uint64_t node, const Roots& roots,
                                const Residues<V>& residues) {
    if constexpr (V::lanes > 1) {
        typename V::Narrow x[V::lanes];
        KERNEL_UNROLL(16)
        for (int i = 0; i < V::lanes; ++i) x[i] = V::load(tile + i * V::lanes);
        split_vectors<V, false>(x, TileFactors<V>(roots.split, node, residues), residues);
        V::transpose(x);
        twist_vectors<V>(x, roots.twist, node << V::log_lanes, residues);
        split_vectors<V, true>(x, PlainFactors<V>{roots.split}, residues);
        KERNEL_UNROLL(16)
        for (int i = 0; i < V::lanes; ++i) V::store(tile + i * V::lanes, x[i]);
    }
}

template <typename V>
KERNEL_INLINE void inverse_tile(std::uint32_t* tile, std::uint64_t node, const Roots& roots,
                                const Residues<V>& residues) {
    if constexpr (V::lanes > 1) {
        typename V::Narrow x[V::lanes];
        KERNEL_UNROLL(16)
        for (int i = 0; i < V::lanes; ++i) x[i] = V::load(tile + i * V::lanes);
        join_vectors<V, true>(x, PlainFactors<V>{roots.split}, residues);
        twist_vectors<V>(x, roots.twist, node << V::log_lanes, residues);
        V::transpose(x);
        join_vectors<V, false>(x, TileFactors<V>(roots.split, node, residues), residues);
        KERNEL_UNROLL(16)
        for (int i = 0; i < V::lanes; ++i) V::store(tile + i * V::lanes, x[i]);
    }
}

}  // namespace
