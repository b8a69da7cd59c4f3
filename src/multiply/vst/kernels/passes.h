// Passes: one or two layers of all columns of some nodes.
#pragma once

#include "multiply/vst/kernels/columns.h"

namespace {

// How columns are walked over twice: so many of a node, and of so many nodes, that they stay in the nearest
// cache from one walk to the next, and that the second one does not wait for the first one's last results.
template <typename V>
struct Walks {
    std::uint64_t columns;  // in doubles
    std::uint64_t nodes;

    explicit KERNEL_INLINE Walks(std::uint64_t part) {
        constexpr std::uint64_t together = 32 * V::lanes;
        columns = part < together ? part : together;
        nodes = together / columns;
    }
};

template <typename V, int Log, bool Reduce, typename From, typename To>
KERNEL_INLINE void forward_node(const From& from, const To& to, std::uint64_t part, const Modulus<V>& m,
                                const StepFactors<V, Log>& w) {
    if constexpr (Log == 2 && has_pipeline<V>) {
        if (part >= shortest_pipeline * V::lanes) {
            ForwardStages<V, Reduce, From, To, StepFactors<V, 2>> stages(from, to, m, w);
            run_pipeline<V::lanes>(stages, part);
            return;
        }
    }
    for_columns<V, Log>(from, to, 0, part, [&](typename V::Real(&x)[1 << Log]) KERNEL_INLINE_LAMBDA {
        forward_radix<V, Reduce>(x, m, w);
    });
}

// All nodes of one column each, as one pipeline.
template <typename V, bool Reduce>
KERNEL_INLINE void forward_columns(double* data, int l, std::uint64_t first, std::uint64_t count,
                                   const qmp::vst::NodeFactors& tree, const Modulus<V>& m) {
    const ColumnFactors<V> w(tree, l, first);
    const Source<V> from(data, V::lanes);
    const Target<V> to(data, V::lanes);
    ForwardStages<V, Reduce, Source<V>, Target<V>, ColumnFactors<V>> stages(from, to, m, w);
    run_pipeline<4 * V::lanes>(stages, 4 * V::lanes * count);
}

template <typename V, bool Reduce, typename From, typename To>
KERNEL_INLINE void forward_walks(From from, To to, double* data, std::uint64_t part, int l,
                                 std::uint64_t first, std::uint64_t count, const qmp::vst::NodeFactors& tree,
                                 const Modulus<V>& m) {
    using Column = typename V::Real(&)[4];
    const Walks<V> walks(part);
    for (std::uint64_t b = first; b < first + count; b += walks.nodes) {
        const std::uint64_t nodes = first + count - b < walks.nodes ? first + count - b : walks.nodes;
        for (std::uint64_t i = 0; i < part; i += walks.columns) {
            for (std::uint64_t c = 0; c < nodes; ++c) {
                const QuarterFactors<V> w(tree, l, b + c);
                for_columns<V, 2>(from.node(c), Target<V>(data + 4 * c * part, part), i, i + walks.columns,
                                  [&](Column x) KERNEL_INLINE_LAMBDA { forward_first<V, Reduce>(x, m, w); });
            }
            for (std::uint64_t c = 0; c < nodes; ++c) {
                const QuarterFactors<V> w(tree, l, b + c);
                for_columns<V, 2>(Source<V>(data + 4 * c * part, part), to.node(c), i, i + walks.columns,
                                  [&](Column x) KERNEL_INLINE_LAMBDA { forward_second(x, m, w); });
            }
        }
        from = from.node(nodes);
        to = to.node(nodes);
        data += 4 * nodes * part;
    }
}

template <typename V, int Log, typename From, typename To>
KERNEL_INLINE void inverse_node(const From& from, const To& to, std::uint64_t part, const Modulus<V>& m,
                                const StepFactors<V, Log>& w) {
    if constexpr (Log == 2 && has_pipeline<V>) {
        if (part >= shortest_pipeline * V::lanes) {
            InverseStages<V, From, To, StepFactors<V, 2>> stages(from, to, m, w);
            run_pipeline<V::lanes>(stages, part);
            return;
        }
    }
    for_columns<V, Log>(from, to, 0, part, [&](typename V::Real(&x)[1 << Log]) KERNEL_INLINE_LAMBDA {
        inverse_radix<V>(x, m, w);
    });
}

// All nodes of one column each, as one pipeline.
template <typename V>
KERNEL_INLINE void inverse_columns(double* data, int l, std::uint64_t first, std::uint64_t count,
                                   const qmp::vst::NodeFactors& tree, const Modulus<V>& m) {
    const ColumnFactors<V> w(tree, l, first);
    const Source<V> from(data, V::lanes);
    const Target<V> to(data, V::lanes);
    InverseStages<V, Source<V>, Target<V>, ColumnFactors<V>> stages(from, to, m, w);
    run_pipeline<4 * V::lanes>(stages, 4 * V::lanes * count);
}

template <typename V, typename From, typename To>
KERNEL_INLINE void inverse_walks(From from, To to, double* data, std::uint64_t part, int l,
                                 std::uint64_t first, std::uint64_t count, const qmp::vst::NodeFactors& tree,
                                 const Modulus<V>& m) {
    using Column = typename V::Real(&)[4];
    const Walks<V> walks(part);
    for (std::uint64_t b = first; b < first + count; b += walks.nodes) {
        const std::uint64_t nodes = first + count - b < walks.nodes ? first + count - b : walks.nodes;
        for (std::uint64_t i = 0; i < part; i += walks.columns) {
            for (std::uint64_t c = 0; c < nodes; ++c) {
                const QuarterFactors<V> w(tree, l, b + c);
                for_columns<V, 2>(from.node(c), Target<V>(data + 4 * c * part, part), i, i + walks.columns,
                                  [&](Column x) KERNEL_INLINE_LAMBDA { inverse_first(x, m, w); });
            }
            for (std::uint64_t c = 0; c < nodes; ++c) {
                const QuarterFactors<V> w(tree, l, b + c);
                for_columns<V, 2>(Source<V>(data + 4 * c * part, part), to.node(c), i, i + walks.columns,
                                  [&](Column x) KERNEL_INLINE_LAMBDA { inverse_second(x, m, w); });
            }
        }
        from = from.node(nodes);
        to = to.node(nodes);
        data += 4 * nodes * part;
    }
}

// --- Passes ---

// Log layers of the nodes [first, first + count) of layer l, each of 2^Log parts.
template <typename V, int Log, bool Reduce>
KERNEL_FUNCTION void forward_pass(double* data, std::uint64_t part, int l, std::uint64_t first,
                                  std::uint64_t count, const qmp::vst::NodeFactors& tree,
                                  const Modulus<V>& modulus) {
    // Copies that no store to the data can be taken to change.
    const qmp::vst::NodeFactors factors = tree;
    const Modulus<V> m = modulus;
    if constexpr (Log == 2 && !has_pipeline<V>) {
        forward_walks<V, Reduce>(Source<V>(data, part), Target<V>(data, part), data, part, l, first, count,
                                 factors, m);
        return;
    }
    if constexpr (Log == 2) {
        if (part == V::lanes && count >= shortest_pipeline) {
            forward_columns<V, Reduce>(data, l, first, count, factors, m);
            return;
        }
    }
    for (std::uint64_t b = first; b < first + count; ++b, data += part << Log) {
        forward_node<V, Log, Reduce>(Source<V>(data, part), Target<V>(data, part), part, m,
                                     StepFactors<V, Log>(factors, l, b));
    }
}

template <typename V, int Log>
KERNEL_FUNCTION void inverse_pass(double* data, std::uint64_t part, int l, std::uint64_t first,
                                  std::uint64_t count, const qmp::vst::NodeFactors& tree,
                                  const Modulus<V>& modulus) {
    const qmp::vst::NodeFactors factors = tree;
    const Modulus<V> m = modulus;
    if constexpr (Log == 2 && !has_pipeline<V>) {
        inverse_walks<V>(Source<V>(data, part), Target<V>(data, part), data, part, l, first, count, factors,
                         m);
        return;
    }
    if constexpr (Log == 2) {
        if (part == V::lanes && count >= shortest_pipeline) {
            inverse_columns<V>(data, l, first, count, factors, m);
            return;
        }
    }
    for (std::uint64_t b = first; b < first + count; ++b, data += part << Log) {
        inverse_node<V, Log>(Source<V>(data, part), Target<V>(data, part), part, m,
                             StepFactors<V, Log>(factors, l, b));
    }
}

// The same with the results going to rows of a matrix: the last step of a tile's columns.
template <typename V, int Log, bool Reduce, bool Past>
KERNEL_FUNCTION void forward_pass_to(double* first_row, std::uint64_t stride, double* data,
                                     std::uint64_t part, int l, std::uint64_t first, std::uint64_t count,
                                     const qmp::vst::NodeFactors& tree, const Modulus<V>& modulus) {
    const qmp::vst::NodeFactors factors = tree;
    const Modulus<V> m = modulus;
    if constexpr (Log == 2 && !has_pipeline<V>) {
        forward_walks<V, Reduce>(Source<V>(data, part),
                                 Target<V, Past, !Past>(first_row + (first << Log) * stride, stride), data,
                                 part, l, first, count, factors, m);
    } else {
        for (std::uint64_t b = first; b < first + count; ++b, data += part << Log) {
            forward_node<V, Log, Reduce>(Source<V>(data, part),
                                         Target<V, Past, !Past>(first_row + (b << Log) * stride, stride),
                                         part, m, StepFactors<V, Log>(factors, l, b));
        }
    }
    if constexpr (Past) V::fence();
}

template <typename V, int Log, bool Reduce>
void forward_pass_to(const qmp::vst::MatrixRows& rows, double* data, std::uint64_t part, int l,
                     std::uint64_t first, std::uint64_t count, const qmp::vst::NodeFactors& factors,
                     const Modulus<V>& m) {
    (rows.past_caches ? forward_pass_to<V, Log, Reduce, true>
                      : forward_pass_to<V, Log, Reduce, false>)(rows.first, rows.stride, data, part, l, first,
                                                                count, factors, m);
}

// The same with the inputs coming from there, and the next tile's part of the same rows being called for.
// Vectors that may not be in the nearest caches are better loaded as early as the processor can look: neither
// in stages nor for one layer only.
template <typename V, int Log>
KERNEL_FUNCTION void inverse_pass_from(const qmp::vst::MatrixRows& rows, double* data, std::uint64_t part,
                                       int l, std::uint64_t first, std::uint64_t count,
                                       const qmp::vst::NodeFactors& tree, const Modulus<V>& modulus) {
    const qmp::vst::NodeFactors factors = tree;
    const Modulus<V> m = modulus;
    for (std::uint64_t b = first; b < first + count; ++b, data += part << Log) {
        const StepFactors<V, Log> w(factors, l, b);
        for_columns<V, Log>(
            Source<V, true>(rows.first + (b << Log) * rows.stride, rows.stride, part), Target<V>(data, part),
            0, part, [&](typename V::Real(&x)[1 << Log]) KERNEL_INLINE_LAMBDA { inverse_radix<V>(x, m, w); });
    }
}

}  // namespace
