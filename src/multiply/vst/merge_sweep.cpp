// The third sweep: the columns' way back, and the residues' way to the product's bytes.
#include <cmath>
#include <cstring>

#include "errors/fatal.h"
#include "multiply/coefficient_check.h"
#include "multiply/vst/merge_constants.h"
#include "multiply/vst/signed_carry.h"
#include "multiply/vst/transform_private.h"

namespace qmp::vst {
namespace {

// The coefficient check compares numbers scaled to this many bits.
constexpr int checked_bits = 40;
// Bytes of a tile's row at the most.
constexpr std::uint64_t segment_most = tile_columns * point_bytes_of(most_primes);

}  // namespace

// The bytes that are wanted, and the rows of the matrix that they take.
struct Transform::Window {
    unsigned char* destination;
    std::uint64_t first, end;
    std::uint64_t first_row, end_row;
    bool wraps;  // the end of the convolution is needed for its start
    std::uint64_t segment_bytes;
    unsigned char* below;  // what the segment around `first` has below it

    Window(const Plan& plan, unsigned char* bytes, std::uint64_t from, std::uint64_t to,
           unsigned char* bytes_below)
        : destination(bytes),
          first(from),
          end(to),
          segment_bytes(tile_columns * plan.point_bytes),
          below(bytes_below) {
        const std::uint64_t row_bytes = plan.columns * plan.point_bytes;
        // The row below reaches into the first wanted one.
        first_row = first / row_bytes;
        if (first_row > 0) --first_row;
        end_row = std::min((end + row_bytes - 1) / row_bytes, plan.rows);
        wraps = first < 2 * spill_words * sizeof(Word) && end_row < plan.rows;
    }
    bool holds(std::uint64_t from) const { return from >= first && from + segment_bytes <= end; }
    // What a segment at `from` has inside the window.
    void copy(const unsigned char* segment, std::uint64_t from) const {
        const std::uint64_t begin = std::max(from, first), stop = std::min(from + segment_bytes, end);
        if (begin < stop) std::memcpy(destination + (begin - first), segment + (begin - from), stop - begin);
        if (from < first && first < from + segment_bytes) std::memcpy(below, segment, first - from);
    }
    // Adds what is left above the segment before the first wanted one. Returns the carry at `limit`.
    std::int64_t add_below(std::uint64_t limit, const std::uint64_t* spill) const {
        const std::uint64_t depth = first % segment_bytes;
        const std::uint64_t taken = std::min<std::uint64_t>(limit, spill_words * sizeof(Word));
        unsigned char joint[segment_most + spill_words * sizeof(Word)];
        std::memcpy(joint, below, depth);
        std::memcpy(joint + depth, destination, taken);
        const std::int64_t carry = add_signed(joint, depth + taken, 0, spill);
        std::memcpy(destination, joint + depth, taken);
        return add_carry(destination, limit, taken, carry);
    }
};

double Transform::merge_tile(const Window& window, const double* matrix, std::uint64_t tile,
                             double* workspace) const {
    const std::uint32_t primes = plan_.primes();
    const std::uint64_t subtree = plan_.subtree_rows() * tile_columns;
    for (std::uint32_t prime = 0; prime < primes; ++prime) {
        const PrimeModulus& modulus = constants(prime).modulus;
        double* buffer = workspace + prime * plan_.tile_doubles();
        for (std::uint32_t s = 0; s < plan_.multiplier(); ++s) {
            const bool trivial = plan_.multiplier() == 1 && !negacyclic_;
            const NodeFactors factors = tables_->factors(prime, negacyclic_, s, true);
            // Only read.
            double* first_row = const_cast<double*>(matrix) + prime * plan_.prime_stride +
                                s * plan_.subtree_rows() * plan_.row_stride + tile * tile_columns;
            kernels_.inverse_layers(
                buffer + s * subtree,
                {tile_columns, plan_.column_layers, factors, trivial, {first_row, plan_.row_stride}},
                modulus);
        }
        kernels_.inverse_outer[index_of(plan_.multiplier())](buffer, subtree, constants(prime).outer,
                                                             negacyclic_, modulus);
    }

    // Rows that lie in the window as a whole go straight to it.
    const MergeConstants& merging = conversion_constants(primes, plan_.multiplier()).merge;
    const std::uint64_t row_bytes = plan_.columns * plan_.point_bytes;
    const std::uint64_t tile_begin = tile * window.segment_bytes;
    double largest = 0;
    const auto merge_rows = [&](std::uint64_t begin, std::uint64_t end, unsigned char* out) {
        const MergeTile rows{workspace + begin * tile_columns,
                             plan_.tile_doubles(),
                             tile_columns,
                             end - begin,
                             out,
                             row_bytes,
                             spills_ + (begin * plan_.tiles() + tile) * spill_words,
                             plan_.tiles() * spill_words};
        largest = std::max(largest, conversion_.merge[primes](merging, rows));
    };
    const auto merge_edge = [&](std::uint64_t row) {
        unsigned char segment[segment_most];
        merge_rows(row, row + 1, segment);
        window.copy(segment, row * row_bytes + tile_begin);
    };
    std::uint64_t row = window.first_row;
    while (row < window.end_row && !window.holds(row * row_bytes + tile_begin)) merge_edge(row++);
    std::uint64_t stop = row;
    while (stop < window.end_row && window.holds(stop * row_bytes + tile_begin)) ++stop;
    if (stop > row) {
        merge_rows(row, stop, window.destination + (row * row_bytes + tile_begin - window.first));
    }
    for (row = stop; row < window.end_row; ++row) merge_edge(row);
    if (window.wraps && tile + 1 == plan_.tiles()) merge_edge(plan_.rows - 1);
    return largest;
}

// Returns the carry out of the window's end (-1, 0 or 1), and in `top` what the convolution's last segment
// leaves above it.
std::int64_t Transform::merge_window(const Window& window, const double* matrix,
                                     std::uint64_t (&top)[4]) const {
    double largest_of_task[64] = {};
    const std::uint64_t words = plan_.workspace_words();
    for_units(plan_.tiles(), [&](double* workspace, std::uint64_t begin, std::uint64_t end) {
        double& largest = largest_of_task[static_cast<std::uint64_t>(workspace - workspaces_) / words];
        for (std::uint64_t tile = begin; tile < end; ++tile) {
            largest = std::max(largest, merge_tile(window, matrix, tile, workspace));
        }
    });
    const double largest = *std::max_element(largest_of_task, largest_of_task + 64);
    const double scaled = std::ldexp(largest, checked_bits - static_cast<int>(plan_.coefficient_bits()));
    check_coefficients(function_, std::uint64_t{1} << checked_bits,
                       scaled < 0x1p63 ? static_cast<std::uint64_t>(scaled) : ~std::uint64_t{0});

    // What segments leave above themselves, added to the next ones: ranges of segments in parallel, then the
    // carries between the ranges.
    const std::uint64_t segment = window.segment_bytes;
    const std::uint64_t first_segment = window.first / segment;
    const std::uint64_t count = (window.end + segment - 1) / segment - first_segment;
    const std::uint64_t size = window.end - window.first;
    const BlockCut cut = BlockCut::of(count, tasks_, 4096);
    std::int64_t carries[64] = {};
    const auto range_end = [&](std::uint64_t i) {
        return std::min((first_segment + cut.end(i, count)) * segment - window.first, size);
    };
    const auto add_range = [&](std::uint64_t i) {
        for (std::uint64_t k = cut.begin(i); k < cut.end(i, count); ++k) {
            const std::uint64_t s = first_segment + k;
            if (s == 0) continue;
            const std::uint64_t* spill = spills_ + (s - 1) * spill_words;
            if (s * segment >= window.first) {
                carries[i] += add_signed(window.destination, range_end(i), s * segment - window.first, spill);
            } else {
                carries[i] += window.add_below(range_end(i), spill);
            }
        }
    };
    if (cut.count <= 1) {
        if (count > 0) add_range(0);
    } else {
        context_.run(0, cut.count, add_range);
    }
    std::int64_t carry = 0;
    for (std::uint64_t i = 0; i < cut.count; ++i) {
        const std::uint64_t begin = i == 0 ? 0 : range_end(i - 1);
        carry = carries[i] + add_carry(window.destination, range_end(i), begin, carry);
    }
    std::memcpy(top, spills_ + (plan_.rows * plan_.tiles() - 1) * spill_words, sizeof top);
    return carry;
}

void Transform::merge(unsigned char* destination, std::uint64_t first, std::uint64_t end,
                      double* matrix) const {
    if (first >= end) return;
    unsigned char below[segment_most];
    const Window window(plan_, destination, first, end, below);
    std::uint64_t top[spill_words];
    const std::int64_t carry = merge_window(window, matrix, top);
    const bool complete = end == plan_.size.capacity_bits / 8;
    // Beyond the end the convolution starts again.
    if (first < 2 * spill_words * sizeof(Word) && (complete || window.wraps)) {
        std::uint64_t shifted[spill_words];
        shift_right_bytes(shifted, top, first);
        std::int64_t again = add_signed(destination, end - first, 0, shifted);
        if (complete && first == 0) {
            again += carry;
            // At most twice: then the words are zero and take it.
            for (int round = 0; round < 2 && again != 0; ++round) {
                again = add_carry(destination, end - first, 0, again);
            }
        }
    }
}

bool Transform::merge_negacyclic(unsigned char* destination, double* matrix) const {
    const std::uint64_t bytes = plan_.size.capacity_bits / 8;
    const Window window(plan_, destination, 0, bytes, nullptr);
    std::uint64_t top[spill_words];
    std::int64_t carry = merge_window(window, matrix, top);
    // The value is low + (top + carry) R^n, and R^n is -1: subtract.
    add_word(top, static_cast<std::uint64_t>(carry));
    negate(top);
    carry = add_signed(destination, bytes, 0, top);
    // carry R^n is -carry. Zero less one is -1, that is R^n; all ones and one more is R^n too.
    if (carry == 0) return false;
    if (add_carry(destination, bytes, 0, -carry) == 0) return false;
    std::memset(destination, 0, bytes);
    return true;
}

}  // namespace qmp::vst
