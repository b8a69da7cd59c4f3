// From the bytes of an operand to residues.
#pragma once

#include "multiply/ntt32/kernels/residues.h"

namespace {

using qmp::ntt32::column_group;
using qmp::ntt32::SplitJob;

// The chunks of the points first + step * i, i < column_group.
template <int Width, int Chunks>
KERNEL_INLINE void gather_points(std::uint32_t (&chunks)[Chunks][column_group], const SplitJob& job,
                                 std::uint64_t first, std::uint64_t step) {
    // The last chunk of an odd number of 16-bit parts reaches two bytes into the next point.
    constexpr bool half_chunk = Width % 4 != 0;
    const std::uint64_t last = first + step * (column_group - 1);
    for (std::uint64_t i = 0; i < column_group; ++i) {
        const std::uint64_t at = Width * (first + step * i);
        unsigned char padded[4 * Chunks] = {};
        const unsigned char* source = job.bytes + at;
        if (Width * last + 4 * Chunks > job.count) {
            const std::uint64_t left = at < job.count ? job.count - at : 0;
            __builtin_memcpy(padded, left == 0 ? padded : source, left < Width ? left : Width);
            source = padded;
        }
        for (int j = 0; j < Chunks; ++j) __builtin_memcpy(&chunks[j][i], source + 4 * j, 4);
        if (half_chunk) chunks[Chunks - 1][i] &= 0xffff;
    }
}

template <typename V, int Primes>
void split_points(const SplitJob& job, std::uint64_t begin, std::uint64_t end) {
    constexpr int width = 2 * (Primes - 1);
    constexpr int chunk_count = (width + 3) / 4;
    alignas(64) std::uint32_t chunks[chunk_count][column_group];
    for (std::uint64_t column = begin; column < end; column += column_group) {
        for (std::uint64_t j = 0; j < job.multiplier; ++j) {
            gather_points<width, chunk_count>(chunks, job, j + job.multiplier * column, job.multiplier);
            std::uint32_t* row = job.rows + job.row_stride * j + column;
            for (int i = 0; i < Primes; ++i, row += job.row_stride * job.multiplier) {
                const Residues<V> residues(job.moduli[i]);
                for (std::uint64_t at = 0; at < column_group; at += V::lanes) {
                    auto sum = residues.mul(V::load(chunks[0] + at), broadcast<V>(job.chunk_weights[i][0]));
                    KERNEL_UNROLL(4)
                    for (int c = 1; c < chunk_count; ++c) {
                        sum = residues.add(sum, residues.mul(V::load(chunks[c] + at),
                                                             broadcast<V>(job.chunk_weights[i][c])));
                    }
                    V::store(row + at, sum);
                }
            }
        }
    }
}

}  // namespace
