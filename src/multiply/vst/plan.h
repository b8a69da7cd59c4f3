// How one convolution of the vector transform is laid out.
//
// Its m * 2^e points form a matrix of m * 2^k rows of 2^(e-k) points, in the operand's order. The columns are
// transformed first, a tile of neighbouring columns at a time, then the rows, one after the other. Residues
// modulo different primes lie in matrices of their own. Rows are cut into leaves that fit the nearest cache.
//
// Only a tile, or a row, needs to be at hand at a time: the same kernels serve operands that are streamed.
#pragma once

#include <cstdint>

#include "multiply/limit_tables.h"
#include "multiply/vst/kernels/kernels.h"
#include "multiply/vst/kernels/transform_kernels.h"

namespace qmp::vst {

struct Plan {
    explicit Plan(const SizeParams& params);

    SizeParams size;
    int column_layers;           // k
    int row_layers;              // log2 of a row's points
    int leaf_layers;             // log2 of a leaf's points
    std::uint64_t rows;          // m * 2^k
    std::uint64_t columns;       // 2^(e-k)
    std::uint64_t row_stride;    // in doubles: a row and a little, so that columns spread over the cache
    std::uint64_t prime_stride;  // in doubles: one matrix
    std::uint64_t point_bytes;

    std::uint32_t primes() const { return size.primes; }
    std::uint32_t multiplier() const { return size.multiplier; }
    std::uint64_t tiles() const { return columns / tile_columns; }
    std::uint64_t subtree_rows() const { return rows / size.multiplier; }
    std::uint64_t leaves_of_row() const { return std::uint64_t{1} << (row_layers - leaf_layers); }
    // Rows that are transformed together, so that the preparation of their leaves fills vectors.
    std::uint64_t rows_of_group() const { return leaves_of_row() >= 8 ? 1 : 8 / leaves_of_row(); }
    std::uint64_t groups() const { return (rows + rows_of_group() - 1) / rows_of_group(); }
    std::uint64_t tile_doubles() const { return rows * tile_columns; }
    // Coefficients are below 2^coefficient_bits, with a bit to spare for how they are measured.
    std::uint32_t coefficient_bits() const;

    // How many primes a product of two new operands takes through its first two sweeps at a time.
    std::uint32_t primes_at_a_time(std::uint64_t tasks) const;

    std::uint64_t operand_words() const { return size.primes * prime_stride; }

    // Scratch of one operation: a part that all tasks share, and a workspace for each task at work.
    std::uint64_t leaf_roots_doubles() const;  // both directions
    std::uint64_t spills_words() const;
    std::uint64_t shared_words() const { return leaf_roots_doubles() + spills_words(); }
    std::uint64_t workspace_words() const;
    std::uint64_t scratch_words(std::uint64_t tasks) const {
        return shared_words() + workspaces(tasks) * workspace_words();
    }
    // Tasks beyond this many would have nothing to do, or too little.
    std::uint64_t workspaces(std::uint64_t tasks) const;
};

// Layers of the columns for transforms of 2^exponent points times the multiplier; non-decreasing.
int column_layers_of(std::uint32_t exponent);

}  // namespace qmp::vst
