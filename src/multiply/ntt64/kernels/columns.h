// Transforms of columns: from an operand's points to transformed squares, and back to points.
#pragma once

#include <cstring>

#include "multiply/ntt64/kernels/tree.h"

namespace {

// Eight points from point `first`, reduced modulo the prime: the sum of their limbs of 64 bits, each times
// its power of 2^64.
template <typename V>
KERNEL_INLINE void load_points(std::uint64_t* target, const qmp::ntt64::Source& source, std::uint64_t first,
                               std::uint64_t columns, const Modular<V>& modular,
                               const qmp::ntt64::Roots& roots) {
    using namespace qmp::ntt64;
    const std::uint64_t size = source.point_bytes;
    const std::uint64_t at = first * size;
    if (at >= source.count) {
        for (std::uint64_t l = 0; l < lanes; l += V::lanes) V::store(target + l, V::set(0));
        return;
    }
    // The next row but two of these columns: rows are far apart.
    const std::uint64_t ahead = at + 3 * columns * size;
    if (ahead < source.count) {
        for (std::uint64_t i = 0; i < lanes * size; i += 64) __builtin_prefetch(source.bytes + ahead + i);
    }
    // A point's last limb may be half a word: the whole is read, and the half that is not its own cut off.
    constexpr std::uint64_t beyond = 8;
    unsigned char end_of_operand[lanes * 8 * most_limbs + beyond];
    const unsigned char* bytes = source.bytes + at;
    if (source.count - at < lanes * size + beyond) {
        const std::uint64_t left = source.count - at;
        const std::uint64_t kept = left < sizeof end_of_operand ? left : sizeof end_of_operand;
        std::memset(end_of_operand, 0, sizeof end_of_operand);
        std::memcpy(end_of_operand, bytes, kept);
        bytes = end_of_operand;
    }
    const std::uint64_t limbs = (size + 7) / 8;
    const auto last_mask = V::set(size % 8 == 0 ? ~std::uint64_t{0} : 0xffffffff);
    for (std::uint64_t l = 0; l < lanes; l += V::lanes, bytes += V::lanes * size) {
        auto sum = modular.residue(V::gather(bytes, size));
        for (std::uint64_t i = 1; i < limbs; ++i) {
            auto limb = V::gather(bytes + 8 * i, size);
            if (i + 1 == limbs) limb = V::bit_and(limb, last_mask);
            sum = modular.add(sum, modular.mul(limb, Factor<V>(roots.limbs[i])));
        }
        V::store(target + l, sum);
    }
}

template <typename V>
void forward_columns(const qmp::ntt64::Matrix& matrix, const qmp::ntt64::Roots& roots,
                     const qmp::ntt64::Source& source, std::uint64_t* data, std::uint64_t* buffer,
                     std::uint64_t begin, std::uint64_t end) {
    using namespace qmp::ntt64;
    const Tree<V> tree(matrix, roots);
    const Modular<V> modular(roots);
    for (std::uint64_t block = begin; block < end; ++block) {
        for (std::uint64_t i = 0; i < matrix.rows; ++i) {
            load_points<V>(buffer + lanes * i, source, i * matrix.columns + lanes * block, matrix.columns,
                           modular, roots);
        }
        tree.forward(buffer, matrix.log_rows, matrix.negacyclic, 0);
        std::uint64_t* square = data + block * lanes * lanes;
        for (std::uint64_t i = 0; i < matrix.rows; i += lanes, square += lanes * matrix.columns) {
            V::transpose(square, buffer + lanes * i);
        }
    }
}

template <typename V>
void inverse_columns(const qmp::ntt64::Matrix& matrix, const qmp::ntt64::Roots& roots, std::uint64_t* data,
                     std::uint64_t* buffer, std::uint64_t begin, std::uint64_t end) {
    using namespace qmp::ntt64;
    const Tree<V> tree(matrix, roots);
    for (std::uint64_t block = begin; block < end; ++block) {
        std::uint64_t* square = data + block * lanes * lanes;
        for (std::uint64_t i = 0; i < matrix.rows; i += lanes, square += lanes * matrix.columns) {
            V::transpose(buffer + lanes * i, square);
        }
        tree.inverse(buffer, matrix.log_rows, matrix.negacyclic, 0);
        square = data + block * lanes * lanes;
        for (std::uint64_t i = 0; i < matrix.rows; i += lanes, square += lanes * matrix.columns) {
            std::memcpy(square, buffer + lanes * i, lanes * lanes * sizeof *square);
        }
    }
}

}  // namespace
