// Tiles of neighbouring columns, between the matrix of a transform and a small contiguous buffer.
#pragma once

#include "multiply/vst/kernels/kernels.h"
#include "multiply/vst/kernels/transform_kernels.h"

namespace {

template <typename V>
void load_tile(double* tile, const double* matrix, std::uint64_t row_stride, std::uint64_t rows) {
    constexpr std::uint64_t columns = qmp::vst::tile_columns;
    for (std::uint64_t r = 0; r < rows; ++r, tile += columns, matrix += row_stride) {
        // The next tile's piece of this row.
        __builtin_prefetch(matrix + columns, 0, 2);
        for (std::uint64_t i = 8; i < columns; i += 8) __builtin_prefetch(matrix + columns + i, 0, 2);
        for (std::uint64_t i = 0; i < columns; i += V::lanes) V::store(tile + i, V::load(matrix + i));
    }
}

template <typename V>
void store_tile(double* matrix, std::uint64_t row_stride, const double* tile, std::uint64_t rows,
                bool past_caches) {
    constexpr std::uint64_t columns = qmp::vst::tile_columns;
    for (std::uint64_t r = 0; r < rows; ++r, tile += columns, matrix += row_stride) {
        for (std::uint64_t i = 0; i < columns; i += V::lanes) {
            if (past_caches) {
                V::stream(matrix + i, V::load(tile + i));
            } else {
                V::store(matrix + i, V::load(tile + i));
            }
        }
    }
    if (past_caches) V::fence();
}

}  // namespace
