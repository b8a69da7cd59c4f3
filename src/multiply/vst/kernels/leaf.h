// Leaves: the last layers of the transform, 2^6 to 2^10 points that stay in the nearest cache.
//
// With V lanes, the points go in chunks of one vector down to the last log V layers. Blocks of V chunks are
// then transposed, twisted and finished (leaf_table.h); they stay transposed until the way back.
#pragma once

#include "multiply/vst/kernels/layers.h"
#include "multiply/vst/kernels/leaf_table.h"
#include "multiply/vst/kernels/unit_radix.h"

namespace {

template <typename V>
KERNEL_INLINE UnitRoots<V> unit_roots(const qmp::vst::LeafBase& base, const Modulus<V>& m) {
    // T[1], T[2] and T[3] of the layer of four nodes.
    return {m.factor(V::set(base.nodes[5])), m.factor(V::set(base.nodes[6])),
            m.factor(V::set(base.nodes[7]))};
}

// The twist of a block; coefficient 0 has the factor 1. `Long`: numbers of up to 8 instead of 4.
template <typename V, bool Long>
KERNEL_INLINE void twist_block(typename V::Real (&x)[V::lanes], const double* record, const Modulus<V>& m) {
    for (int k = 1; k < V::lanes; ++k) {
        const double* at = record + (k - 1) * 2 * V::lanes;
        const Factor<V> w{V::load(at), V::load(at + V::lanes)};
        x[k] = Long ? m.multiply_long(x[k], w) : m.multiply(x[k], w);
    }
}
template <typename V>
constexpr std::uint64_t twist_record = 2 * (V::lanes - 1) * V::lanes;

template <typename V>
KERNEL_INLINE void load_block(typename V::Real (&x)[V::lanes], const double* data) {
    for (int i = 0; i < V::lanes; ++i) x[i] = V::load(data + i * V::lanes);
}

template <typename V>
KERNEL_INLINE void store_block(double* data, const typename V::Real (&x)[V::lanes]) {
    for (int i = 0; i < V::lanes; ++i) V::store(data + i * V::lanes, x[i]);
}

// --- Walks over a leaf; one for each chain of dependent operations, which would be too long together ---

// The first layer, all inputs multiplied.
template <typename V>
KERNEL_FUNCTION void leaf_top_forward(double* data, std::uint64_t half, const LeafFactors<V>& factors,
                                      const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    const Factor<V> left = factors.first_layer(0), right = factors.first_layer(1);
    for_columns<V, 1>(Source<V>(data, half), Target<V>(data, half), 0, half,
                      [&](typename V::Real(&x)[2]) KERNEL_INLINE_LAMBDA {
                          x[0] = m.multiply(x[0], left);
                          x[1] = m.multiply(x[1], right);
                          cross<V>(x[0], x[1]);
                      });
}

template <typename V>
KERNEL_FUNCTION void leaf_top_inverse(double* data, std::uint64_t half, const LeafFactors<V>& factors,
                                      const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    const Factor<V> left = factors.first_layer(0), right = factors.first_layer(1);
    for_columns<V, 1>(Source<V>(data, half), Target<V>(data, half), 0, half,
                      [&](typename V::Real(&x)[2]) KERNEL_INLINE_LAMBDA {
                          cross<V>(x[0], x[1]);
                          x[0] = m.multiply(x[0], left);
                          x[1] = m.multiply(x[1], right);
                      });
}

template <typename V, typename Body>
KERNEL_INLINE void for_blocks(double* data, std::uint64_t points, const Body& body) {
    for (std::uint64_t i = 0; i < points; i += V::lanes * V::lanes) {
        typename V::Real x[V::lanes];
        load_block<V>(x, data + i);
        body(x);
        store_block<V>(data + i, x);
    }
}

template <typename V>
KERNEL_FUNCTION void twist_forward(double* data, std::uint64_t points, const double* record,
                                   const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    for_blocks<V>(data, points, [&](typename V::Real(&x)[V::lanes]) KERNEL_INLINE_LAMBDA {
        V::transpose(x);
        x[0] = m.reduce(x[0]);
        twist_block<V, false>(x, record, m);
        record += twist_record<V>;
    });
}

template <typename V>
KERNEL_FUNCTION void twist_inverse(double* data, std::uint64_t points, const double* record,
                                   const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    for_blocks<V>(data, points, [&](typename V::Real(&x)[V::lanes]) KERNEL_INLINE_LAMBDA {
        twist_block<V, true>(x, record, m);
        record += twist_record<V>;
        V::transpose(x);
    });
}

template <typename V>
KERNEL_FUNCTION void unit_layers_forward(double* data, std::uint64_t points, const qmp::vst::LeafBase& base,
                                         const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    const UnitRoots<V> roots = unit_roots<V>(base, m);
    for_blocks<V>(data, points,
                  [&](typename V::Real(&x)[V::lanes]) KERNEL_INLINE_LAMBDA { unit_forward(x, m, roots); });
}

template <typename V>
KERNEL_FUNCTION void unit_layers_inverse(double* data, std::uint64_t points, const qmp::vst::LeafBase& base,
                                         const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    const UnitRoots<V> roots = unit_roots<V>(base, m);
    for_blocks<V>(data, points,
                  [&](typename V::Real(&x)[V::lanes]) KERNEL_INLINE_LAMBDA { unit_inverse(x, m, roots); });
}

// --- Leaves ---

template <typename V>
void leaf_forward(double* data, const double* table, const qmp::vst::LeafBase& base, int log_length,
                  const qmp::vst::PrimeModulus& modulus) {
    const LeafFactors<V> factors(table, log_length);
    const std::uint64_t points = std::uint64_t{1} << log_length;
    const qmp::vst::Layers layers{V::lanes, factors.across, factors.nodes, false};
    leaf_top_forward<V>(data, points / 2, factors, modulus);
    ForwardLayers<V>(layers, modulus).run_below(data, 1, true);
    twist_forward<V>(data, points, base.lanes, modulus);
    unit_layers_forward<V>(data, points, base, modulus);
}

template <typename V>
void leaf_inverse(double* data, const double* table, const qmp::vst::LeafBase& base, int log_length,
                  const qmp::vst::PrimeModulus& modulus) {
    const LeafFactors<V> factors(table, log_length);
    const std::uint64_t points = std::uint64_t{1} << log_length;
    const qmp::vst::Layers layers{V::lanes, factors.across, factors.nodes, false};
    unit_layers_inverse<V>(data, points, base, modulus);
    twist_inverse<V>(data, points, base.lanes, modulus);
    InverseLayers<V>(layers, modulus).run_below(data, 1);
    leaf_top_inverse<V>(data, points / 2, factors, modulus);
}

template <typename V>
void pointwise(double* a, const double* b, std::uint64_t count, const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    for (std::uint64_t i = 0; i < count; i += V::lanes) {
        const typename V::Real y = m.reduce(V::load(b + i));
        V::store(a + i, m.multiply(V::load(a + i), y));
    }
}

}  // namespace
