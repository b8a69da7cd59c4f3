// Operand bytes to fields of 48 bits, as doubles.
#pragma once

#include <cstdint>

#include "multiply/vectors/inline.h"
#include "multiply/vst/kernels/kernels.h"

namespace {

template <typename V, std::uint32_t Primes>
struct RowSplitter {
    static constexpr std::uint64_t point_bytes = qmp::vst::point_bytes_of(Primes);
    static constexpr std::uint32_t chunks = qmp::vst::chunks_of(Primes);
    static constexpr std::uint64_t columns = qmp::vst::tile_columns;
    // Fields are loaded two by two, 16 bytes at a time: how far the loads of a row reach.
    static constexpr std::uint64_t row_reach = (columns - 1) * point_bytes + 12 + 16;

    static constexpr int bytes_of(std::uint32_t chunk) {
        const int left = static_cast<int>(point_bytes) - 6 * static_cast<int>(chunk);
        return left >= 6 ? 6 : left > 0 ? left : 0;
    }

    // The next tile's part of the same row is called for: rows are too far apart for the processor to see it.
    static KERNEL_INLINE void call_for_next(const unsigned char* source) {
        KERNEL_UNROLL(16)
        for (std::uint64_t i = 0; i < columns * point_bytes; i += 64) {
            __builtin_prefetch(source + columns * point_bytes + i, 0, 2);
        }
    }

    // A row of points, all loads inside the buffer.
    static KERNEL_INLINE void run(double* target, std::uint64_t chunk_stride, const unsigned char* source) {
        KERNEL_UNROLL(4)
        for (std::uint64_t j = 0; j < columns; j += V::lanes) {
            split_pair<0>(target + j, chunk_stride, source + j * point_bytes);
            split_pair<2>(target + j, chunk_stride, source + j * point_bytes);
        }
    }

    // A row that begins `left` bytes before the operand's end.
    static void run_last(double* target, std::uint64_t chunk_stride, const unsigned char* source,
                         std::uint64_t left) {
        unsigned char window[row_reach] = {};
        __builtin_memcpy(window, source, left < row_reach ? left : row_reach);
        run(target, chunk_stride, window);
    }

    static void clear(double* target, std::uint64_t chunk_stride) {
        for (std::uint32_t c = 0; c < chunks; ++c) {
            for (std::uint64_t j = 0; j < columns; j += V::lanes) {
                V::store(target + c * chunk_stride + j, V::set(0));
            }
        }
    }

  private:
    template <std::uint32_t Chunk>
    static KERNEL_INLINE void split_pair(double* target, std::uint64_t chunk_stride,
                                         const unsigned char* source) {
        typename V::Real first, second;
        V::template load_fields<bytes_of(Chunk), bytes_of(Chunk + 1)>(source + 6 * Chunk, point_bytes, first,
                                                                      second);
        V::store(target + Chunk * chunk_stride, first);
        if constexpr (Chunk + 1 < chunks) V::store(target + (Chunk + 1) * chunk_stride, second);
    }
};

template <typename V, std::uint32_t Primes>
void split(double* chunks, const qmp::vst::SplitTile& tile) {
    using Row = RowSplitter<V, Primes>;
    const std::uint64_t chunk_stride = tile.rows * Row::columns;
    for (std::uint64_t r = 0; r < tile.rows; ++r) {
        double* target = chunks + r * Row::columns;
        const std::uint64_t position = (tile.first_point + r * tile.row_points) * Row::point_bytes;
        const std::uint64_t left = position < tile.operand_bytes ? tile.operand_bytes - position : 0;
        if (left >= Row::row_reach) {
            Row::call_for_next(tile.operand + position);
            Row::run(target, chunk_stride, tile.operand + position);
        } else if (left > 0) {
            Row::run_last(target, chunk_stride, tile.operand + position, left);
        } else {
            Row::clear(target, chunk_stride);
        }
    }
}

}  // namespace
