#include "multiply/limit_tables.h"

#include <algorithm>
#include <cstddef>

#include "errors/exception.h"

namespace qmp {
namespace {

// The index of the first row that holds `bits`; rows.size() when none does.
std::size_t first_row_for(const LimitTables& tables, std::span<const LimitRow> rows, std::uint64_t bits) {
    if (tables.size(rows.front()).capacity_bits >= bits) return 0;
    std::size_t low = 0, high = rows.size();
    while (high - low > 1) {
        const std::size_t middle = (low + high) / 2;
        (tables.size(rows[middle]).capacity_bits < bits ? low : high) = middle;
    }
    return high;
}

}  // namespace

SizeParams LimitTables::size(std::uint32_t primes, std::uint32_t multiplier, std::uint32_t exponent) const {
    const std::uint64_t pairs_of_points = std::uint64_t{multiplier} << (exponent - 1);
    return {primes, multiplier, exponent, (primes - 1) * payload * pairs_of_points};
}

std::uint64_t LimitTables::largest_capacity() const {
    const std::uint64_t capacity = size(standard.back()).capacity_bits;
    return specialised.empty() ? capacity : std::max(capacity, size(specialised.back()).capacity_bits);
}

SizeParams LimitTables::find(std::uint64_t bits) const {
    for (std::span<const LimitRow> rows : {specialised, standard}) {
        if (rows.empty()) continue;
        const std::size_t row = first_row_for(*this, rows, bits);
        if (row < rows.size()) return size(rows[row]);
    }
    throw LimitExceededException(function, largest_capacity(), bits);
}

SizeParams halved(const SizeParams& params) {
    return {params.primes, params.multiplier, params.exponent - 1, params.capacity_bits / 2};
}

}  // namespace qmp
