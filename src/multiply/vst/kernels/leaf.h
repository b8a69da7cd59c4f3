// Leaves: the last layers of the transform, 2^6 to 2^10 points that stay in the nearest cache.
//
// With V lanes, blocks of V * V points are the end: log V layers across V vectors, a transposition, and log V
// layers more whose factors differ from lane to lane. The points stay transposed until the way back.
//
// A leaf's table: the values of the node factors of the first layers (2^(length - log V) of them), then their
// quotients, then one record for each block, for the layers after the transposition: for the layers s = 0 ..
// log V - 1 and h < 2^s a vector of values and one of quotients, lane i belonging to node 2^s (V block + i) +
// h.
#pragma once

#include "multiply/vst/kernels/layers.h"

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
    const Factor<V> w = m.factor(m.multiply(V::load(base), rho));
    V::store(values, w.value);
    V::store(quotients, w.quotient);
}

template <typename V>
void leaf_table(double* table, const qmp::vst::LeafBase& base, int log_length, const double* rho,
                std::ptrdiff_t stride, const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    const int across = log_length - log_lanes<V>;
    const std::uint64_t nodes = std::uint64_t{1} << across;
    constexpr std::uint64_t lanes = V::lanes;

    // The layers of fewer nodes than lanes share a vector.
    double first[lanes];
    first[0] = 0;
    for (std::uint64_t i = 1; i < lanes; ++i) {
        first[i] = rho[(31 - __builtin_clz(static_cast<unsigned>(i))) * stride];
    }
    store_factors<V>(table, table + nodes, base.nodes, m.factor(V::load(first)), m);
    for (int l = log_lanes<V>; l < across; ++l) {
        const Factor<V> factor = m.factor(V::set(rho[l * stride]));
        for (std::uint64_t i = std::uint64_t{1} << l; i < std::uint64_t{2} << l; i += lanes) {
            store_factors<V>(table + i, table + nodes + i, base.nodes + i, factor, m);
        }
    }

    Factor<V> factors[log_lanes<V>];
    for (int s = 0; s < log_lanes<V>; ++s) {
        factors[s] = m.factor(V::set(rho[(across + s) * stride]));
    }
    double* record = table + 2 * nodes;
    const double* base_record = base.lanes;
    for (std::uint64_t group = 0; group < nodes / lanes; ++group) {
        KERNEL_UNROLL(3)
        for (int s = 0; s < log_lanes<V>; ++s) {
            KERNEL_UNROLL(4)
            for (int h = 0; h < 1 << s; ++h) {
                store_factors<V>(record, record + lanes, base_record, factors[s], m);
                record += 2 * lanes;
                base_record += lanes;
            }
        }
    }
}

// Factors of the layers across the vectors of one block, and those from lane to lane.
template <typename V>
struct AcrossFactors {
    qmp::vst::NodeFactors factors;
    std::uint64_t index;

    KERNEL_INLINE Factor<V> operator()(int layer, int node) const {
        return broadcast<V>(factors, (index << layer) + static_cast<std::uint64_t>(node));
    }
};

template <typename V>
struct LaneFactors {
    const double* record;

    KERNEL_INLINE Factor<V> operator()(int layer, int node) const {
        const double* at = record + (((1 << layer) - 1 + node) * 2 * V::lanes);
        return {V::load(at), V::load(at + V::lanes)};
    }
};

template <typename V>
KERNEL_INLINE void load_block(typename V::Real (&x)[V::lanes], const double* data) {
    for (int i = 0; i < V::lanes; ++i) x[i] = V::load(data + i * V::lanes);
}

template <typename V>
KERNEL_INLINE void store_block(double* data, const typename V::Real (&x)[V::lanes]) {
    for (int i = 0; i < V::lanes; ++i) V::store(data + i * V::lanes, x[i]);
}

template <typename V>
void leaf_forward(double* data, const double* table, int log_length, const qmp::vst::PrimeModulus& modulus) {
    constexpr std::uint64_t block_points = V::lanes * V::lanes;
    const std::uint64_t nodes = std::uint64_t{1} << (log_length - log_lanes<V>);
    const int layers = log_length - 2 * log_lanes<V>;
    const qmp::vst::NodeFactors factors{table, table + nodes};
    forward_layers<V>(data, {block_points, layers, factors, false}, modulus, false);

    const Modulus<V> m = modulus_of<V>(modulus);
    const double* record = table + 2 * nodes;
    const std::uint64_t blocks = std::uint64_t{1} << layers;
    // Two walks: the chain of dependent operations in a block would be too long for one.
    double* block = data;
    for (std::uint64_t b = 0; b < blocks; ++b, block += block_points) {
        typename V::Real x[V::lanes];
        load_block<V>(x, block);
        forward_radix<V, true>(x, m, AcrossFactors<V>{factors, blocks + b});
        store_block<V>(block, x);
    }
    block = data;
    for (std::uint64_t b = 0; b < blocks;
         ++b, block += block_points, record += 2 * (V::lanes - 1) * V::lanes) {
        typename V::Real x[V::lanes];
        load_block<V>(x, block);
        V::transpose(x);
        forward_radix<V, (V::lanes > 4)>(x, m, LaneFactors<V>{record});
        store_block<V>(block, x);
    }
}

template <typename V>
void leaf_inverse(double* data, const double* table, int log_length, const qmp::vst::PrimeModulus& modulus) {
    constexpr std::uint64_t block_points = V::lanes * V::lanes;
    const std::uint64_t nodes = std::uint64_t{1} << (log_length - log_lanes<V>);
    const int layers = log_length - 2 * log_lanes<V>;
    const qmp::vst::NodeFactors factors{table, table + nodes};

    const Modulus<V> m = modulus_of<V>(modulus);
    const double* record = table + 2 * nodes;
    const std::uint64_t blocks = std::uint64_t{1} << layers;
    double* block = data;
    for (std::uint64_t b = 0; b < blocks;
         ++b, block += block_points, record += 2 * (V::lanes - 1) * V::lanes) {
        typename V::Real x[V::lanes];
        load_block<V>(x, block);
        inverse_radix<V>(x, m, LaneFactors<V>{record});
        V::transpose(x);
        store_block<V>(block, x);
    }
    block = data;
    for (std::uint64_t b = 0; b < blocks; ++b, block += block_points) {
        typename V::Real x[V::lanes];
        load_block<V>(x, block);
        inverse_radix<V>(x, m, AcrossFactors<V>{factors, blocks + b});
        store_block<V>(block, x);
    }
    inverse_layers<V>(data, {block_points, layers, factors, false}, modulus);
}

template <typename V>
void pointwise(double* a, const double* b, std::uint64_t count, double scale_value, double scale_quotient,
               const qmp::vst::PrimeModulus& modulus) {
    const Modulus<V> m = modulus_of<V>(modulus);
    const Factor<V> factor{V::set(scale_value), V::set(scale_quotient)};
    for (std::uint64_t i = 0; i < count; i += V::lanes) {
        const typename V::Real y = m.multiply(V::load(b + i), factor);
        V::store(a + i, m.multiply(V::load(a + i), y));
    }
}

}  // namespace
