#include "multiply/fft/fft_params.h"

#include <cstddef>

#include "errors/exception.h"
#include "multiply/fft/size_tables.h"

namespace qmp::fft {
namespace {

// The first row whose capacity is at least s, given that row 0 is too small; `rows.size()` when none is.
template <typename Rows>
std::size_t find_row(const Rows& rows, std::uint64_t s) {
    std::size_t low = 0, high = rows.size();
    while (high - low > 1) {
        const std::size_t middle = (low + high) / 2;
        (rows[middle].capacity_bits < s ? low : high) = middle;
    }
    return high;
}

}  // namespace

const FftParams& fft_params(std::uint64_t s) {
    if (s <= size_table.front().capacity_bits) return size_table.front();
    const std::size_t row = find_row(size_table, s);
    if (row == size_table.size()) {
        throw LimitExceededException("fft_params()", size_table.back().capacity_bits, s);
    }
    return size_table[row];
}

const FftParams& fft_params_exact(std::uint64_t s) {
    std::size_t row = 0;
    if (s > exact_size_table.front().capacity_bits) {
        row = find_row(exact_size_table, s);
        if (row == exact_size_table.size()) {
            throw LimitExceededException("fft_params_exact()", exact_size_table.back().capacity_bits, s);
        }
    }
    if (exact_size_table[row].capacity_bits != s) {
        throw InvalidParametersException("fft_params_exact()", "Invalid Parameters");
    }
    return exact_size_table[row];
}

}  // namespace qmp::fft
