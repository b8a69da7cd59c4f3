#include "multiply/hybrid_ntt/hybrid_params.h"

#include <cstddef>

#include "errors/exception.h"
#include "multiply/hybrid_ntt/size_tables.h"

namespace qmp::hybrid_ntt {
namespace {

std::uint64_t capacity(const HybridRow& row) {
    return make_params(row.k, row.m).capacity_bits;
}

// lo and hi close in on the first row whose capacity is at least `bits`. Row 0 is never looked at: hi ends
// on 1 at the least, and on the number of rows when none is large enough.
std::size_t find_row(std::span<const HybridRow> rows, std::uint64_t bits) {
    std::size_t lo = 0, hi = rows.size();
    while (hi - lo > 1) {
        const std::size_t middle = (lo + hi) / 2;
        (capacity(rows[middle]) < bits ? lo : hi) = middle;
    }
    return hi;
}

}  // namespace

std::span<const HybridRow> specialised_list() {
    return specialised_rows;
}

std::span<const HybridRow> standard_list() {
    return standard_rows;
}

HybridParams standard_params(std::uint64_t bits) {
    std::size_t row = find_row(standard_rows, bits);
    if (row == 1 && bits <= 8192) row = 0;
    if (row == standard_rows.size()) {
        throw LimitExceededException("hybrid_params()", capacity(standard_rows.back()), bits);
    }
    return make_params(standard_rows[row].k, standard_rows[row].m);
}

HybridParams hybrid_params(std::uint64_t bits) {
    if (bits <= capacity(specialised_rows.front())) {
        return make_params(specialised_rows.front().k, specialised_rows.front().m);
    }
    const std::size_t row = find_row(specialised_rows, bits);
    if (row == specialised_rows.size()) return standard_params(bits);
    return make_params(specialised_rows[row].k, specialised_rows[row].m);
}

}  // namespace qmp::hybrid_ntt
