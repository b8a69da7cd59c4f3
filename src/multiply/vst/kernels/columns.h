// One or two layers of the transform over columns of vectors.
//
// The vectors come from the data or from a matrix's rows, and go to either. Two layers of one column are a
// chain of 40 cycles of dependent operations. Processors look ahead no farther than some hundred operations,
// two or three columns, and that leaves their units idle for a third of the time. So the columns overlap:
// where there are registers enough, as a pipeline whose stages are a quarter of the chain each, and elsewhere
// (passes.h) by walking over a few columns twice, a layer at a time.
#pragma once

#include "multiply/vst/kernels/kernels.h"
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
    Factor<V> top_factor, left_factor, right_factor;

    KERNEL_INLINE QuarterFactors(const qmp::vst::NodeFactors& factors, int l, std::uint64_t b) {
        const std::uint64_t index = (std::uint64_t{1} << l) + b;
        top_factor = broadcast<V>(factors, index);
        left_factor = broadcast<V>(factors, 2 * index);
        right_factor = broadcast<V>(factors, 2 * index + 1);
    }
    // Of the column at i.
    KERNEL_INLINE const Factor<V>& top(std::uint64_t) const { return top_factor; }
    KERNEL_INLINE const Factor<V>& left(std::uint64_t) const { return left_factor; }
    KERNEL_INLINE const Factor<V>& right(std::uint64_t) const { return right_factor; }
    KERNEL_INLINE Factor<V> operator()(int layer, int node) const {
        if (layer == 0) return top_factor;
        if (node == 0) return left_factor;
        return right_factor;
    }
};

template <typename V>
struct HalfFactor {
    Factor<V> factor;

    KERNEL_INLINE HalfFactor(const qmp::vst::NodeFactors& factors, int l, std::uint64_t b)
        : factor(broadcast<V>(factors, (std::uint64_t{1} << l) + b)) {}
    KERNEL_INLINE Factor<V> operator()(int, int) const { return factor; }
};

template <typename V, int Log>
struct StepFactors;
template <typename V>
struct StepFactors<V, 1> : HalfFactor<V> {
    using HalfFactor<V>::HalfFactor;
};
template <typename V>
struct StepFactors<V, 2> : QuarterFactors<V> {
    using QuarterFactors<V>::QuarterFactors;
};

// The same of nodes of one column, from node b of layer l on: their vectors at 0, 4 lanes, 8 lanes and so on.
template <typename V>
struct ColumnFactors {
    qmp::vst::NodeFactors factors;
    std::uint64_t first;

    KERNEL_INLINE ColumnFactors(const qmp::vst::NodeFactors& tree, int l, std::uint64_t b)
        : factors(tree), first((std::uint64_t{1} << l) + b) {}
    KERNEL_INLINE std::uint64_t index(std::uint64_t i) const { return first + i / (4 * V::lanes); }
    KERNEL_INLINE Factor<V> top(std::uint64_t i) const { return broadcast<V>(factors, index(i)); }
    KERNEL_INLINE Factor<V> left(std::uint64_t i) const { return broadcast<V>(factors, 2 * index(i)); }
    KERNEL_INLINE Factor<V> right(std::uint64_t i) const { return broadcast<V>(factors, 2 * index(i) + 1); }
};

// A node's parts: part k of its columns begins at first + k * stride.
template <typename Double>
struct Parts {
    Double* first;
    std::uint64_t stride;

    KERNEL_INLINE Double* operator()(int k, std::uint64_t column) const {
        return first + static_cast<std::uint64_t>(k) * stride + column;
    }
};

// Where a pass finds its vectors. `Next`: those a tile further on in the same rows are called for.
template <typename V, bool Next = false>
struct Source : Parts<const double> {
    KERNEL_INLINE Source(const double* data, std::uint64_t step, std::uint64_t tile = 0)
        : Parts{data, step}, ahead(tile) {}
    // That of the node c nodes further on.
    KERNEL_INLINE Source node(std::uint64_t c) const {
        return {this->first + 4 * c * this->stride, this->stride, ahead};
    }
    KERNEL_INLINE typename V::Real load(int k, std::uint64_t column) const {
        const double* from = (*this)(k, column);
        const typename V::Real x = V::load(from);
        if constexpr (Next) {
            if (column % 8 == 0) __builtin_prefetch(from + ahead, 0, 2);
        }
        return x;
    }
    std::uint64_t ahead;
};

// Where it leaves them; `Past`: past the caches. `Next`: the vectors a tile further on are called for.
template <typename V, bool Past = false, bool Next = false>
struct Target : Parts<double> {
    KERNEL_INLINE Target(double* data, std::uint64_t step) : Parts{data, step} {}
    KERNEL_INLINE Target node(std::uint64_t c) const {
        return {this->first + 4 * c * this->stride, this->stride};
    }
    KERNEL_INLINE void store(int k, std::uint64_t column, typename V::Real x) const {
        if constexpr (Past) {
            V::stream((*this)(k, column), x);
        } else {
            double* to = (*this)(k, column);
            V::store(to, x);
            if constexpr (Next) {
                if (column % 8 == 0) __builtin_prefetch(to + qmp::vst::tile_columns, 1, 2);
            }
        }
    }
};

// --- Columns one after the other ---

template <typename V, int Log, typename From, typename To, typename Body>
KERNEL_INLINE void for_columns(const From& from, const To& to, std::uint64_t begin, std::uint64_t end,
                               const Body& body) {
    for (std::uint64_t i = begin; i < end; i += V::lanes) {
        typename V::Real x[1 << Log];
        for (int k = 0; k < 1 << Log; ++k) x[k] = from.load(k, i);
        body(x);
        for (int k = 0; k < 1 << Log; ++k) to.store(k, i, x[k]);
    }
}

// --- Columns as a pipeline ---

// Each round runs stage four of one column, three of the next, two of the one after that and stage one of
// the fourth; the stages of a round do not depend on each other. Columns are `next` doubles apart, three at
// least.
template <std::uint64_t next, typename Stages>
KERNEL_INLINE void run_pipeline(Stages& stages, std::uint64_t end) {
    stages.one(0);
    stages.two(0);
    stages.one(next);
    stages.three(0);
    stages.two(next);
    stages.one(2 * next);
    std::uint64_t i = 0;
    for (; i + 3 * next < end; i += next) {
        stages.four(i);
        stages.three(i + next);
        stages.two(i + 2 * next);
        stages.one(i + 3 * next);
    }
    stages.four(i);
    stages.three(i + next);
    stages.two(i + 2 * next);
    stages.four(i + next);
    stages.three(i + 2 * next);
    stages.four(i + 2 * next);
}
template <typename V>
constexpr bool has_pipeline = V::registers >= 32;
constexpr std::uint64_t shortest_pipeline = 3;

template <typename V, bool Reduce, typename From, typename To, typename Factors>
class ForwardStages {
    using Real = typename V::Real;

  public:
    KERNEL_INLINE ForwardStages(const From& from, const To& to, const Modulus<V>& m, const Factors& w)
        : from_(from), to_(to), m_(m), w_(w) {}

    KERNEL_INLINE void one(std::uint64_t i) {
        m_.begin(from_.load(2, i), w_.top(i), product2_);
        m_.begin(from_.load(3, i), w_.top(i), product3_);
        if constexpr (Reduce) quotient_ = m_.quotient(from_.load(0, i));
    }
    KERNEL_INLINE void two(std::uint64_t i) {
        const Real t2 = m_.end(product2_), t3 = m_.end(product3_);
        Real x0 = V::load(from_(0, i));
        if constexpr (Reduce) x0 = m_.remainder(x0, quotient_);
        const Real x1 = from_.load(1, i);
        y0_ = V::add(x0, t2);
        y2_ = V::sub(x0, t2);
        y1_ = V::add(x1, t3);
        y3_ = V::sub(x1, t3);
    }
    KERNEL_INLINE void three(std::uint64_t i) {
        m_.begin(y1_, w_.left(i), left_);
        m_.begin(y3_, w_.right(i), right_);
        z0_ = y0_;
        z2_ = y2_;
    }
    KERNEL_INLINE void four(std::uint64_t i) {
        const Real t1 = m_.end(left_), t3 = m_.end(right_);
        to_.store(0, i, V::add(z0_, t1));
        to_.store(1, i, V::sub(z0_, t1));
        to_.store(2, i, V::add(z2_, t3));
        to_.store(3, i, V::sub(z2_, t3));
    }

  private:
    const From from_;
    const To to_;
    const Modulus<V>& m_;
    const Factors& w_;
    Product<V> product2_, product3_, left_, right_;
    Real quotient_, y0_, y1_, y2_, y3_, z0_, z2_;
};

template <typename V, typename From, typename To, typename Factors>
class InverseStages {
    using Real = typename V::Real;

  public:
    KERNEL_INLINE InverseStages(const From& from, const To& to, const Modulus<V>& m, const Factors& w)
        : from_(from), to_(to), m_(m), w_(w) {}

    KERNEL_INLINE void one(std::uint64_t i) {
        const Real x0 = from_.load(0, i), x1 = from_.load(1, i);
        const Real x2 = from_.load(2, i), x3 = from_.load(3, i);
        m_.begin(V::sub(x0, x1), w_.left(i), left_);
        m_.begin(V::sub(x2, x3), w_.right(i), right_);
        const Real s = V::add(x0, x1), t = V::add(x2, x3);
        sum_ = V::add(s, t);
        quotient_ = m_.quotient(sum_);
        difference_ = V::sub(s, t);
    }
    KERNEL_INLINE void two(std::uint64_t i) {
        const Real left = m_.end(left_), right = m_.end(right_);
        to_.store(0, i, m_.remainder(sum_, quotient_));
        to_.store(1, i, V::add(left, right));
        z3_ = V::sub(left, right);
        z2_ = difference_;
    }
    KERNEL_INLINE void three(std::uint64_t i) {
        m_.begin_long(z2_, w_.top(i), product2_);
        m_.begin(z3_, w_.top(i), product3_);
    }
    KERNEL_INLINE void four(std::uint64_t i) {
        to_.store(2, i, m_.end(product2_));
        to_.store(3, i, m_.end(product3_));
    }

  private:
    const From from_;
    const To to_;
    const Modulus<V>& m_;
    const Factors& w_;
    Product<V> left_, right_, product2_, product3_;
    Real sum_, quotient_, difference_, z2_, z3_;
};

}  // namespace
