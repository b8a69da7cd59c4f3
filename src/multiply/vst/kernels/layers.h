// Layers of the transform over blocks of whole vectors.
#pragma once

#include "multiply/vst/kernels/radix.h"
#include "multiply/vst/kernels/transform_kernels.h"

namespace {

template <typename V>
KERNEL_INLINE Modulus<V> modulus_of(const qmp::vst::PrimeModulus& modulus) {
    return {V::set(modulus.prime), V::set(modulus.inverse)};
}

template <typename V>
KERNEL_INLINE Factor<V> broadcast(const qmp::vst::NodeFactors& factors, std::uint64_t index) {
    return {V::set(factors.values[index]), V::set(factors.quotients[index])};
}

// The factors of two layers below node b of layer l.
template <typename V>
struct QuarterFactors {
    Factor<V> top, left, right;

    KERNEL_INLINE QuarterFactors(const qmp::vst::NodeFactors& factors, int l, std::uint64_t b) {
        const std::uint64_t index = (std::uint64_t{1} << l) + b;
        top = broadcast<V>(factors, index);
        left = broadcast<V>(factors, 2 * index);
        right = broadcast<V>(factors, 2 * index + 1);
    }
    KERNEL_INLINE const Factor<V>& operator()(int layer, int node) const {
        return layer == 0 ? top : node == 0 ? left : right;
    }
};

// What a pass does with the vectors of its quarters or halves.
template <typename V, int Log, typename Body>
KERNEL_INLINE void for_columns(double* data, std::uint64_t part, const Body& body) {
    for (std::uint64_t i = 0; i < part; i += V::lanes) {
        typename V::Real x[1 << Log];
        for (int k = 0; k < 1 << Log; ++k) x[k] = V::load(data + static_cast<std::uint64_t>(k) * part + i);
        body(x);
        for (int k = 0; k < 1 << Log; ++k) V::store(data + static_cast<std::uint64_t>(k) * part + i, x[k]);
    }
}

// Two layers of the nodes [first, first + count) of layer l, each of four parts.
template <typename V, bool Reduce>
void forward_quarters(double* data, std::uint64_t part, int l, std::uint64_t first, std::uint64_t count,
                      const qmp::vst::NodeFactors& factors, const Modulus<V>& m) {
    for (std::uint64_t b = first; b < first + count; ++b, data += 4 * part) {
        const QuarterFactors<V> w(factors, l, b);
        for_columns<V, 2>(data, part, [&](typename V::Real(&x)[4]) KERNEL_INLINE_LAMBDA {
            forward_radix<V, Reduce>(x, m, w);
        });
    }
}

template <typename V, bool Reduce>
void forward_halves(double* data, std::uint64_t part, int l, std::uint64_t first, std::uint64_t count,
                    const qmp::vst::NodeFactors& factors, const Modulus<V>& m) {
    for (std::uint64_t b = first; b < first + count; ++b, data += 2 * part) {
        const Factor<V> w = broadcast<V>(factors, (std::uint64_t{1} << l) + b);
        for_columns<V, 1>(data, part, [&](typename V::Real(&x)[2]) KERNEL_INLINE_LAMBDA {
            forward_radix<V, Reduce>(x, m, [&](int, int) KERNEL_INLINE_LAMBDA { return w; });
        });
    }
}

template <typename V>
void inverse_quarters(double* data, std::uint64_t part, int l, std::uint64_t first, std::uint64_t count,
                      const qmp::vst::NodeFactors& factors, const Modulus<V>& m) {
    for (std::uint64_t b = first; b < first + count; ++b, data += 4 * part) {
        const QuarterFactors<V> w(factors, l, b);
        for_columns<V, 2>(data, part, [&](typename V::Real(&x)[4])
                                          KERNEL_INLINE_LAMBDA { inverse_radix<V>(x, m, w); });
    }
}

template <typename V>
void inverse_halves(double* data, std::uint64_t part, int l, std::uint64_t first, std::uint64_t count,
                    const qmp::vst::NodeFactors& factors, const Modulus<V>& m) {
    for (std::uint64_t b = first; b < first + count; ++b, data += 2 * part) {
        const Factor<V> w = broadcast<V>(factors, (std::uint64_t{1} << l) + b);
        for_columns<V, 1>(data, part, [&](typename V::Real(&x)[2]) KERNEL_INLINE_LAMBDA {
            inverse_radix<V>(x, m, [&](int, int) KERNEL_INLINE_LAMBDA { return w; });
        });
    }
}

// The first two layers of a tree of angle 0: factors 1, 1 and i. Inputs at most 2.4: outputs at most 4, if
// at most 0.75 (the residues of an operand) at most 3.
template <typename V>
void forward_trivial(double* data, std::uint64_t part, const qmp::vst::NodeFactors& factors,
                     const Modulus<V>& m) {
    using Real = typename V::Real;
    const Factor<V> i = broadcast<V>(factors, 3);
    for_columns<V, 2>(data, part, [&](Real(&x)[4]) KERNEL_INLINE_LAMBDA {
        const Real a = V::add(x[0], x[2]), b = V::sub(x[0], x[2]);
        const Real c = V::add(x[1], x[3]);
        const Real d = m.multiply(V::sub(x[1], x[3]), i);
        x[0] = V::add(a, c);
        x[1] = V::sub(a, c);
        x[2] = V::add(b, d);
        x[3] = V::sub(b, d);
    });
}

template <typename V>
void inverse_trivial(double* data, std::uint64_t part, const qmp::vst::NodeFactors& factors,
                     const Modulus<V>& m) {
    using Real = typename V::Real;
    const Factor<V> i = broadcast<V>(factors, 3);
    for_columns<V, 2>(data, part, [&](Real(&x)[4]) KERNEL_INLINE_LAMBDA {
        const Real a = V::add(x[0], x[1]), b = V::sub(x[0], x[1]);
        const Real c = V::add(x[2], x[3]);
        const Real d = m.multiply(V::sub(x[2], x[3]), i);
        x[0] = m.reduce(V::add(a, c));
        x[2] = m.reduce(V::sub(a, c));
        x[1] = m.reduce(V::add(b, d));
        x[3] = m.reduce(V::sub(b, d));
    });
}

// Doubles that are walked over pass by pass; longer blocks are cut first.
constexpr std::uint64_t cached_doubles = 4096;

template <typename V>
class ForwardLayers {
  public:
    ForwardLayers(const qmp::vst::Layers& layers, const qmp::vst::PrimeModulus& modulus)
        : layers_(layers), m_(modulus_of<V>(modulus)) {}

    // Node b of layer l with all below it. `low`: the inputs are at most 2.4.
    void run(double* data, int l, std::uint64_t b, bool low) const {
        const int left = layers_.layers - l;
        if (left == 0) return;
        if (layers_.unit << left <= cached_doubles || left <= 2) {
            run_cached(data, l, b, 1, low);
            return;
        }
        step(data, l, b, 1, low);
        const int bits = step_bits(left);
        const std::uint64_t part = layers_.unit << (left - bits);
        for (std::uint64_t i = 0; i < std::uint64_t{1} << bits; ++i) {
            run(data + i * part, l + bits, (b << bits) + i, low_after(l, low));
        }
    }

  private:
    static int step_bits(int left) { return left % 2 == 0 ? 2 : 1; }
    bool trivial(int l) const { return l == 0 && layers_.trivial_top && layers_.layers % 2 == 0; }
    bool low_after(int l, bool low) const { return !low && !trivial(l); }

    void run_cached(double* data, int l, std::uint64_t first, std::uint64_t count, bool low) const {
        while (l < layers_.layers) {
            step(data, l, first, count, low);
            low = low_after(l, low);
            const int bits = step_bits(layers_.layers - l);
            l += bits;
            first <<= bits;
            count <<= bits;
        }
    }
    void step(double* data, int l, std::uint64_t first, std::uint64_t count, bool low) const {
        const int left = layers_.layers - l;
        const int bits = step_bits(left);
        const std::uint64_t part = layers_.unit << (left - bits);
        if (trivial(l)) {
            forward_trivial<V>(data, part, layers_.factors, m_);
        } else if (bits == 2) {
            (low ? forward_quarters<V, false> : forward_quarters<V, true>)(data, part, l, first, count,
                                                                          layers_.factors, m_);
        } else {
            (low ? forward_halves<V, false> : forward_halves<V, true>)(data, part, l, first, count,
                                                                      layers_.factors, m_);
        }
    }

    const qmp::vst::Layers& layers_;
    const Modulus<V> m_;
};

template <typename V>
class InverseLayers {
  public:
    InverseLayers(const qmp::vst::Layers& layers, const qmp::vst::PrimeModulus& modulus)
        : layers_(layers), m_(modulus_of<V>(modulus)) {}

    void run(double* data, int l, std::uint64_t b) const {
        const int left = layers_.layers - l;
        if (left == 0) return;
        if (layers_.unit << left <= cached_doubles || left <= 2) {
            run_cached(data, l, b);
            return;
        }
        const int bits = step_bits(left);
        const std::uint64_t part = layers_.unit << (left - bits);
        for (std::uint64_t i = 0; i < std::uint64_t{1} << bits; ++i) {
            run(data + i * part, l + bits, (b << bits) + i);
        }
        step(data, l, b, 1);
    }

  private:
    static int step_bits(int left) { return left % 2 == 0 ? 2 : 1; }

    void run_cached(double* data, int top, std::uint64_t b) const {
        int l = layers_.layers;
        while (l > top) {
            // The way down takes one layer first when their number is odd.
            l -= l - top == 1 ? 1 : 2;
            step(data, l, b << (l - top), std::uint64_t{1} << (l - top));
        }
    }
    void step(double* data, int l, std::uint64_t first, std::uint64_t count) const {
        const int left = layers_.layers - l;
        const int bits = step_bits(left);
        const std::uint64_t part = layers_.unit << (left - bits);
        if (l == 0 && layers_.trivial_top && bits == 2) {
            inverse_trivial<V>(data, part, layers_.factors, m_);
        } else if (bits == 2) {
            inverse_quarters<V>(data, part, l, first, count, layers_.factors, m_);
        } else {
            inverse_halves<V>(data, part, l, first, count, layers_.factors, m_);
        }
    }

    const qmp::vst::Layers& layers_;
    const Modulus<V> m_;
};

template <typename V>
void forward_layers(double* data, const qmp::vst::Layers& layers, const qmp::vst::PrimeModulus& modulus,
                    bool low) {
    ForwardLayers<V>(layers, modulus).run(data, 0, 0, low);
}

template <typename V>
void inverse_layers(double* data, const qmp::vst::Layers& layers, const qmp::vst::PrimeModulus& modulus) {
    InverseLayers<V>(layers, modulus).run(data, 0, 0);
}

}  // namespace
