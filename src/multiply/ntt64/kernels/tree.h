// Transforms of 2^log items of eight words each as a tree of halvings.
//
// Node j of a level stands for a polynomial modulo x^(2h) - c^2, c the factor of node j; halved, it is one
// modulo x^h - c (node 2j of the next level) and one modulo x^h + c (node 2j + 1). The factors of a node do
// not depend on its level: factor 0 is 1, and factor 1 a square root of -1. Below a root u of the multiplier
// every factor is multiplied by a root of u of the multiplier's own order, whose number follows from u.
// Node 0 at the top makes a cyclic transform, node 1 a negacyclic one.
//
// Two levels at a time; long nodes one after another, so that short ones are finished in cache.
#pragma once

#include "multiply/ntt64/kernels/modular.h"

namespace {

constexpr std::uint32_t cached_log = 8;  // 2^8 items of 64 bytes: 16 KiB

// The number of the square root of the multiplier's root number u.
KERNEL_INLINE std::uint32_t root_of(std::uint32_t u, std::uint32_t multiplier) {
    return u % 2 == 0 ? u / 2 : (u + multiplier) / 2;
}

template <typename V, bool Inverse>
KERNEL_INLINE void halve(std::uint64_t* data, std::uint64_t half, const Modular<V>& modular,
                         const qmp::ntt64::Twiddle& twiddle) {
    const Factor<V> c(twiddle);
    for (std::uint64_t i = 0; i < half; i += V::lanes) {
        const auto low = V::load(data + i), high = V::load(data + half + i);
        if constexpr (Inverse) {
            V::store(data + i, modular.add(low, high));
            V::store(data + half + i, modular.mul(modular.sub(low, high), c));
        } else {
            const auto turned = modular.mul(high, c);
            V::store(data + i, modular.add(low, turned));
            V::store(data + half + i, modular.sub(low, turned));
        }
    }
}

// Two levels: the node's factor and those of its two halves.
template <typename V>
KERNEL_INLINE void quarter_forward(std::uint64_t* data, std::uint64_t quarter, const Modular<V>& modular,
                                   const qmp::ntt64::Twiddle& node, const qmp::ntt64::Twiddle* halves) {
    const Factor<V> c(node), even(halves[0]), odd(halves[1]);
    for (std::uint64_t i = 0; i < quarter; i += V::lanes) {
        std::uint64_t* p = data + i;
        const auto x0 = V::load(p), x1 = V::load(p + quarter);
        const auto t2 = modular.mul(V::load(p + 2 * quarter), c);
        const auto t3 = modular.mul(V::load(p + 3 * quarter), c);
        const auto y0 = modular.add(x0, t2), y2 = modular.sub(x0, t2);
        const auto t1 = modular.mul(modular.add(x1, t3), even);
        const auto t4 = modular.mul(modular.sub(x1, t3), odd);
        V::store(p, modular.add(y0, t1));
        V::store(p + quarter, modular.sub(y0, t1));
        V::store(p + 2 * quarter, modular.add(y2, t4));
        V::store(p + 3 * quarter, modular.sub(y2, t4));
    }
}

template <typename V>
KERNEL_INLINE void quarter_inverse(std::uint64_t* data, std::uint64_t quarter, const Modular<V>& modular,
                                   const qmp::ntt64::Twiddle& node, const qmp::ntt64::Twiddle* halves) {
    const Factor<V> c(node), even(halves[0]), odd(halves[1]);
    for (std::uint64_t i = 0; i < quarter; i += V::lanes) {
        std::uint64_t* p = data + i;
        const auto z0 = V::load(p), z1 = V::load(p + quarter);
        const auto z2 = V::load(p + 2 * quarter), z3 = V::load(p + 3 * quarter);
        const auto y0 = modular.add(z0, z1), y1 = modular.mul(modular.sub(z0, z1), even);
        const auto y2 = modular.add(z2, z3), y3 = modular.mul(modular.sub(z2, z3), odd);
        V::store(p, modular.add(y0, y2));
        V::store(p + quarter, modular.add(y1, y3));
        V::store(p + 2 * quarter, modular.mul(modular.sub(y0, y2), c));
        V::store(p + 3 * quarter, modular.mul(modular.sub(y1, y3), c));
    }
}

template <typename V>
class Tree {
  public:
    Tree(const qmp::ntt64::Matrix& matrix, const qmp::ntt64::Roots& roots)
        : roots_(roots), multiplier_(matrix.multiplier), modular_(roots) {}

    // From node `node`, below the multiplier's root number u (0 where it has no part).
    void forward(std::uint64_t* data, std::uint32_t log, std::uint64_t node, std::uint32_t u) const {
        if (log > cached_log) {
            level<false>(data, log, 1, node, u);
            const std::uint64_t quarter = words(log - 2);
            for (std::uint64_t i = 0; i < 4; ++i) {
                forward(data + i * quarter, log - 2, 4 * node + i, below(below(u)));
            }
            return;
        }
        std::uint64_t nodes = 1;
        if (log % 2 != 0) {
            halve<V, false>(data, words(log - 1), modular_, factors(u)[node]);
            step(log, nodes, node, u, 1);
        }
        while (log > 0) {
            level<false>(data, log, nodes, node, u);
            step(log, nodes, node, u, 2);
        }
    }

    void inverse(std::uint64_t* data, std::uint32_t log, std::uint64_t node, std::uint32_t u) const {
        if (log > cached_log) {
            const std::uint64_t quarter = words(log - 2);
            for (std::uint64_t i = 0; i < 4; ++i) {
                inverse(data + i * quarter, log - 2, 4 * node + i, below(below(u)));
            }
            level<true>(data, log, 1, node, u);
            return;
        }
        // The levels that the forward transform goes through, last one first.
        std::uint32_t roots[cached_log + 2];
        roots[0] = u;
        for (std::uint32_t i = 0; i < log; ++i) roots[i + 1] = below(roots[i]);
        const std::uint32_t top = log % 2;
        for (std::uint32_t done = log; done > top; done -= 2) {
            const std::uint32_t above = done - 2;
            level<true>(data, log - above, std::uint64_t{1} << above, node << above, roots[above]);
        }
        if (top) halve<V, true>(data, words(log - 1), modular_, factors(u)[node]);
    }

  private:
    static std::uint64_t words(std::uint32_t log) { return qmp::ntt64::lanes << log; }
    std::uint32_t below(std::uint32_t u) const { return root_of(u, multiplier_); }
    // The tables are numbered by the root that their factors carry, one step below u.
    const qmp::ntt64::Twiddle* factors(std::uint32_t u) const { return roots_.trees[below(u)]; }

    void step(std::uint32_t& log, std::uint64_t& nodes, std::uint64_t& node, std::uint32_t& u,
              std::uint32_t levels) const {
        log -= levels;
        nodes <<= levels;
        node <<= levels;
        for (std::uint32_t i = 0; i < levels; ++i) u = below(u);
    }

    // Two levels of `nodes` nodes of 2^log items each, from node `first`.
    template <bool Inverse>
    void level(std::uint64_t* data, std::uint32_t log, std::uint64_t nodes, std::uint64_t first,
               std::uint32_t u) const {
        const std::uint64_t quarter = words(log - 2);
        const qmp::ntt64::Twiddle* own = factors(u);
        const qmp::ntt64::Twiddle* halves = factors(below(u));
        for (std::uint64_t j = first; j < first + nodes; ++j, data += 4 * quarter) {
            if constexpr (Inverse) {
                quarter_inverse<V>(data, quarter, modular_, own[j], halves + 2 * j);
            } else {
                quarter_forward<V>(data, quarter, modular_, own[j], halves + 2 * j);
            }
        }
    }

    const qmp::ntt64::Roots& roots_;
    std::uint32_t multiplier_;
    Modular<V> modular_;
};

}  // namespace
