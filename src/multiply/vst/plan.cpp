#include "multiply/vst/plan.h"

#include <algorithm>
#include <bit>

namespace qmp::vst {
namespace {

// log2 of a row's points. Rows shorter than the longest leaf would share its preparation badly. Tiles of few
// rows stay in the nearest cache and touch the matrix in few places; 32 rows (times the multiplier) where
// rows of both operands still fit the second cache, which ends at 2^14 points. From there on both grow alike.
int row_layers_of(std::uint32_t exponent) {
    const int e = static_cast<int>(exponent);
    if (e <= longest_leaf) return e;
    return std::max({longest_leaf, std::min(e - 5, 14), (e + 6) / 2});
}

constexpr std::uint64_t row_padding = 8;
constexpr std::uint64_t most_workspaces = 64;
// Residues that one task should have at least: some 20 microseconds of a sweep, the time in which a thread
// that has gone to sleep is woken. One that waits awake starts at once.
constexpr std::uint64_t residues_of_task = std::uint64_t{1} << 14;

std::uint64_t rounded_up(std::uint64_t n) {
    return (n + 7) / 8 * 8;
}

}  // namespace

int column_layers_of(std::uint32_t exponent) {
    return static_cast<int>(exponent) - row_layers_of(exponent);
}

Plan::Plan(const SizeParams& params)
    : size(params),
      column_layers(column_layers_of(params.exponent)),
      row_layers(row_layers_of(params.exponent)),
      leaf_layers(std::min(row_layers, longest_leaf)),
      rows(std::uint64_t{params.multiplier} << column_layers),
      columns(std::uint64_t{1} << row_layers),
      row_stride(columns + row_padding),
      prime_stride(rows * row_stride),
      point_bytes(point_bytes_of(params.primes)) {}

std::uint32_t Plan::coefficient_bits() const {
    return static_cast<std::uint32_t>(16 * point_bytes + std::bit_width(size.points()) + 1);
}

std::uint32_t Plan::primes_at_a_time(std::uint64_t tasks) const {
    // Tasks have to meet after every sweep.
    if (tasks > 1) return size.primes;
    // Cutting the operands into fields again for every few primes costs less than the way of their matrices
    // to the memory and back, as long as the two matrices of one prime fit the last cache. For each prime
    // alone it would cost as much.
    constexpr std::uint64_t second_cache = std::uint64_t{3} << 19, last_cache = std::uint64_t{1} << 22;
    const std::uint64_t bytes_of_prime = 2 * prime_stride * sizeof(double);
    if (bytes_of_prime > last_cache) return size.primes;
    return static_cast<std::uint32_t>(
        std::clamp<std::uint64_t>(second_cache / bytes_of_prime, 2, size.primes));
}

std::uint64_t Plan::leaf_roots_doubles() const {
    return 2 * size.primes * rounded_up(leaves_of_row());
}

std::uint64_t Plan::spills_words() const {
    return rows * tiles() * spill_words;
}

std::uint64_t Plan::workspace_words() const {
    // The three kinds of work in turn: operand to columns, rows, columns to product.
    const std::uint64_t split = (chunks_of(size.primes) + 1) * tile_doubles();
    const std::uint64_t leaves = rounded_up(rows_of_group() * leaves_of_row());
    const std::uint64_t row = 2 * leaf_table_doubles + 4 * rounded_up(leaves_of_row()) +
                              2 * leaves * (static_cast<std::uint64_t>(row_layers) + 1);
    const std::uint64_t merge = size.primes * tile_doubles();
    return std::max({split, row, merge});
}

std::uint64_t Plan::workspaces(std::uint64_t tasks) const {
    const std::uint64_t useful = std::max<std::uint64_t>(size.points() * size.primes / residues_of_task, 1);
    return std::max<std::uint64_t>(std::min({tasks, most_workspaces, useful, tiles()}), 1);
}

}  // namespace qmp::vst
