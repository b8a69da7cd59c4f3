// Layers of the transform over blocks of whole vectors.
#pragma once

#include "multiply/vst/kernels/passes.h"

namespace {

template <typename V>
void copy_to_rows(const qmp::vst::MatrixRows& rows, const double* data, std::uint64_t unit,
                  std::uint64_t count) {
    for (std::uint64_t r = 0; r < count; ++r) {
        for (std::uint64_t i = 0; i < unit; i += V::lanes) {
            V::store(rows.first + r * rows.stride + i, V::load(data + r * unit + i));
        }
    }
}

template <typename V>
void copy_from_rows(const qmp::vst::MatrixRows& rows, double* data, std::uint64_t unit, std::uint64_t count) {
    for (std::uint64_t r = 0; r < count; ++r) {
        for (std::uint64_t i = 0; i < unit; i += V::lanes) {
            V::store(data + r * unit + i, V::load(rows.first + r * rows.stride + i));
        }
    }
}

// The first two layers of a tree of angle 0: factors 1, 1 and i. Inputs at most 0.75, outputs at most 3.
template <typename V>
void forward_trivial(double* data, std::uint64_t part, const qmp::vst::NodeFactors& factors,
                     const Modulus<V>& m) {
    using Real = typename V::Real;
    const Factor<V> i = broadcast<V>(factors, 3);
    for_columns<V, 2>(Source<V>(data, part), Target<V>(data, part), 0, part,
                      [&](Real(&x)[4]) KERNEL_INLINE_LAMBDA {
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
    for_columns<V, 2>(Source<V>(data, part), Target<V>(data, part), 0, part,
                      [&](Real(&x)[4]) KERNEL_INLINE_LAMBDA {
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

// How many layers each pass takes: two, but one first when their number is odd. Three would not be faster:
// the multiply-add units are the bound, not the loads.
struct Steps {
    const qmp::vst::Layers& layers;

    bool trivial(int l) const { return l == 0 && layers.trivial_top && layers.layers >= 2; }
    int bits(int l) const {
        const int left = layers.layers - l;
        return left % 2 == 0 || trivial(l) ? 2 : 1;
    }
    bool last(int l, int step) const { return l + step == layers.layers; }
    bool goes_to_rows(int l, int step) const { return layers.rows.first && last(l, step) && !trivial(l); }
    // Whether no step takes care of the rows, so that they have to be copied.
    bool copies() const {
        return layers.rows.first && (layers.layers == 0 || (trivial(0) && layers.layers == 2));
    }
    std::uint64_t part(int l, int step) const { return layers.unit << (layers.layers - l - step); }
    bool cached(int l) const {
        return layers.unit << (layers.layers - l) <= cached_doubles || l + bits(l) == layers.layers;
    }
};

template <typename V>
class ForwardLayers {
  public:
    ForwardLayers(const qmp::vst::Layers& layers, const qmp::vst::PrimeModulus& modulus)
        : steps_{layers}, m_(modulus_of<V>(modulus)) {}

    // Node b of layer l with all below it. `low`: the inputs are at most 3.
    void run(double* data, int l, std::uint64_t b, bool low) const {
        if (l == steps_.layers.layers) return;
        if (steps_.cached(l)) {
            run_cached(data, l, b, 1, low);
            return;
        }
        const int bits = steps_.bits(l);
        step(data, l, bits, b, 1, low);
        const std::uint64_t part = steps_.part(l, bits);
        for (std::uint64_t i = 0; i < std::uint64_t{1} << bits; ++i) {
            run(data + i * part, l + bits, (b << bits) + i, low_after(l, low));
        }
    }

    // All nodes of layer l with all below them; the data stay in the nearest cache.
    void run_below(double* data, int l, bool low) const {
        run_cached(data, l, 0, std::uint64_t{1} << l, low);
    }

  private:
    bool low_after(int l, bool low) const { return !low && !steps_.trivial(l); }

    void run_cached(double* data, int l, std::uint64_t first, std::uint64_t count, bool low) const {
        while (l < steps_.layers.layers) {
            const int bits = steps_.bits(l);
            step(data, l, bits, first, count, low);
            low = low_after(l, low);
            l += bits;
            first <<= bits;
            count <<= bits;
        }
    }
    void step(double* data, int l, int bits, std::uint64_t first, std::uint64_t count, bool low) const {
        const bool reduce = !low;
        if (steps_.trivial(l)) {
            forward_trivial<V>(data, steps_.part(l, 2), steps_.layers.factors, m_);
        } else if (bits == 2) {
            reduce ? pass<2, true>(data, l, first, count) : pass<2, false>(data, l, first, count);
        } else {
            reduce ? pass<1, true>(data, l, first, count) : pass<1, false>(data, l, first, count);
        }
    }
    template <int Log, bool Reduce>
    void pass(double* data, int l, std::uint64_t first, std::uint64_t count) const {
        const qmp::vst::Layers& layers = steps_.layers;
        const std::uint64_t part = steps_.part(l, Log);
        if (steps_.goes_to_rows(l, Log)) {
            forward_pass_to<V, Log, Reduce>(layers.rows, data, part, l, first, count, layers.factors, m_);
        } else {
            forward_pass<V, Log, Reduce>(data, part, l, first, count, layers.factors, m_);
        }
    }

    const Steps steps_;
    const Modulus<V> m_;
};

template <typename V>
class InverseLayers {
  public:
    InverseLayers(const qmp::vst::Layers& layers, const qmp::vst::PrimeModulus& modulus)
        : steps_{layers}, m_(modulus_of<V>(modulus)) {}

    void run(double* data, int l, std::uint64_t b) const {
        if (l == steps_.layers.layers) return;
        if (steps_.cached(l)) {
            run_cached(data, l, b, 1);
            return;
        }
        const int bits = steps_.bits(l);
        const std::uint64_t part = steps_.part(l, bits);
        for (std::uint64_t i = 0; i < std::uint64_t{1} << bits; ++i) {
            run(data + i * part, l + bits, (b << bits) + i);
        }
        step(data, l, bits, b, 1);
    }

    void run_below(double* data, int l) const { run_cached(data, l, 0, std::uint64_t{1} << l); }

  private:
    void run_cached(double* data, int l, std::uint64_t first, std::uint64_t count) const {
        if (l == steps_.layers.layers) return;
        const int bits = steps_.bits(l);
        run_cached(data, l + bits, first << bits, count << bits);
        step(data, l, bits, first, count);
    }
    void step(double* data, int l, int bits, std::uint64_t first, std::uint64_t count) const {
        const std::uint64_t part = steps_.part(l, bits);
        const qmp::vst::NodeFactors& factors = steps_.layers.factors;
        if (steps_.trivial(l)) {
            inverse_trivial<V>(data, part, factors, m_);
        } else if (steps_.goes_to_rows(l, bits)) {
            (bits == 2 ? inverse_pass_from<V, 2> : inverse_pass_from<V, 1>)(steps_.layers.rows, data, part, l,
                                                                            first, count, factors, m_);
        } else if (bits == 2) {
            inverse_pass<V, 2>(data, part, l, first, count, factors, m_);
        } else {
            inverse_pass<V, 1>(data, part, l, first, count, factors, m_);
        }
    }

    const Steps steps_;
    const Modulus<V> m_;
};

template <typename V>
void forward_layers(double* data, const qmp::vst::Layers& layers, const qmp::vst::PrimeModulus& modulus,
                    bool low) {
    ForwardLayers<V>(layers, modulus).run(data, 0, 0, low);
    if (Steps{layers}.copies())
        copy_to_rows<V>(layers.rows, data, layers.unit, std::uint64_t{1} << layers.layers);
}

template <typename V>
void inverse_layers(double* data, const qmp::vst::Layers& layers, const qmp::vst::PrimeModulus& modulus) {
    if (Steps{layers}.copies()) {
        copy_from_rows<V>(layers.rows, data, layers.unit, std::uint64_t{1} << layers.layers);
    }
    InverseLayers<V>(layers, modulus).run(data, 0, 0);
}

}  // namespace
