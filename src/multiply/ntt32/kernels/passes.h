// Passes over rows: one node into two or four, and whole blocks down to their leaves.
#pragma once

#include "multiply/ntt32/kernels/tile.h"

namespace {

template <typename V>
void forward2(std::uint32_t* block, int log_length, std::uint64_t node, const Roots& roots,
              std::uint64_t begin, std::uint64_t end) {
    const Residues<V> residues(roots.modulus);
    const auto factor = broadcast<V>(look_up(roots.split, node, roots.modulus));
    std::uint32_t* const a = block;
    std::uint32_t* const b = block + (std::uint64_t{1} << (log_length - 1));
    for (std::uint64_t i = begin; i < end; i += V::lanes) {
        const auto x = V::load(a + i);
        const auto y = residues.mul(V::load(b + i), factor);
        V::store(a + i, residues.add(x, y));
        V::store(b + i, residues.sub(x, y));
    }
}

template <typename V>
void inverse2(std::uint32_t* block, int log_length, std::uint64_t node, const Roots& roots,
              std::uint64_t begin, std::uint64_t end) {
    const Residues<V> residues(roots.modulus);
    const auto factor = broadcast<V>(look_up(roots.split, node, roots.modulus));
    std::uint32_t* const a = block;
    std::uint32_t* const b = block + (std::uint64_t{1} << (log_length - 1));
    for (std::uint64_t i = begin; i < end; i += V::lanes) {
        const auto x = V::load(a + i), y = V::load(b + i);
        V::store(a + i, residues.add(x, y));
        V::store(b + i, residues.mul(residues.sub_lazy(x, y), factor));
    }
}

template <typename V>
void forward4(std::uint32_t* block, int log_length, std::uint64_t node, const Roots& roots,
              std::uint64_t begin, std::uint64_t end) {
    const Residues<V> residues(roots.modulus);
    const auto top = broadcast<V>(look_up(roots.split, node, roots.modulus));
    const auto left = broadcast<V>(look_up(roots.split, 2 * node, roots.modulus));
    const auto right = broadcast<V>(look_up(roots.split, 2 * node + 1, roots.modulus));
    const std::uint64_t quarter = std::uint64_t{1} << (log_length - 2);
    for (std::uint64_t i = begin; i < end; i += V::lanes) {
        std::uint32_t* const p = block + i;
        const auto x0 = V::load(p), x1 = V::load(p + quarter);
        const auto x2 = residues.mul(V::load(p + 2 * quarter), top);
        const auto x3 = residues.mul(V::load(p + 3 * quarter), top);
        const auto y0 = residues.add(x0, x2), y2 = residues.sub(x0, x2);
        const auto y1 = residues.mul(residues.add_lazy(x1, x3), left);
        const auto y3 = residues.mul(residues.sub_lazy(x1, x3), right);
        V::store(p, residues.add(y0, y1));
        V::store(p + quarter, residues.sub(y0, y1));
        V::store(p + 2 * quarter, residues.add(y2, y3));
        V::store(p + 3 * quarter, residues.sub(y2, y3));
    }
}

template <typename V>
void inverse4(std::uint32_t* block, int log_length, std::uint64_t node, const Roots& roots,
              std::uint64_t begin, std::uint64_t end) {
    const Residues<V> residues(roots.modulus);
    const auto top = broadcast<V>(look_up(roots.split, node, roots.modulus));
    const auto left = broadcast<V>(look_up(roots.split, 2 * node, roots.modulus));
    const auto right = broadcast<V>(look_up(roots.split, 2 * node + 1, roots.modulus));
    const std::uint64_t quarter = std::uint64_t{1} << (log_length - 2);
    for (std::uint64_t i = begin; i < end; i += V::lanes) {
        std::uint32_t* const p = block + i;
        const auto x0 = V::load(p), x1 = V::load(p + quarter);
        const auto x2 = V::load(p + 2 * quarter), x3 = V::load(p + 3 * quarter);
        const auto y0 = residues.add(x0, x1), y2 = residues.add(x2, x3);
        const auto y1 = residues.mul(residues.sub_lazy(x0, x1), left);
        const auto y3 = residues.mul(residues.sub_lazy(x2, x3), right);
        V::store(p, residues.add(y0, y2));
        V::store(p + quarter, residues.add(y1, y3));
        V::store(p + 2 * quarter, residues.mul(residues.sub_lazy(y0, y2), top));
        V::store(p + 3 * quarter, residues.mul(residues.sub_lazy(y1, y3), top));
    }
}

// Depth first, so that the parts of a block stay in the nearest cache that holds them.
template <typename V, bool Inverse>
void whole_block(std::uint32_t* block, int log_length, std::uint64_t node, const Roots& roots) {
    constexpr int log_tile = 2 * V::log_lanes;
    if (log_length == log_tile) {
        const Residues<V> residues(roots.modulus);
        if (Inverse) {
            inverse_tile<V>(block, node, roots, residues);
        } else {
            forward_tile<V>(block, node, roots, residues);
        }
        return;
    }
    const int parts = (log_length - log_tile) % 2 == 0 ? 2 : 1;
    const int part = log_length - parts;
    const std::uint64_t columns = std::uint64_t{1} << part;
    if (!Inverse) (parts == 2 ? forward4<V> : forward2<V>)(block, log_length, node, roots, 0, columns);
    const bool leaves = V::lanes == 1 && part == 0;
    for (std::uint64_t i = 0; !leaves && i < std::uint64_t{1} << parts; ++i) {
        whole_block<V, Inverse>(block + (i << part), part, (node << parts) + i, roots);
    }
    if (Inverse) (parts == 2 ? inverse4<V> : inverse2<V>)(block, log_length, node, roots, 0, columns);
}

}  // namespace
