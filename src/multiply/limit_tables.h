// The convolution sizes of the transforms modulo several primes.
//
// A size is a number of primes and a length, multiplier * 2^exponent points. Every transform has two fixed
// lists of sizes, each strictly increasing in capacity: one tuned for this build's processor, searched
// first, and the standard one, which reaches further.
#pragma once

#include <cstdint>
#include <span>

namespace qmp {

// One row of a list.
struct LimitRow {
    std::uint8_t primes;
    std::uint8_t multiplier;  // 1, 3, 5 or 7
    std::uint8_t exponent;

    bool operator==(const LimitRow&) const = default;
};

struct SizeParams {
    std::uint32_t primes;
    std::uint32_t multiplier;     // 1, 3, 5 or 7
    std::uint32_t exponent;       // at least 1
    std::uint64_t capacity_bits;  // (primes - 1) * multiplier * payload * 2^(exponent - 1)

    std::uint64_t points() const { return std::uint64_t{multiplier} << exponent; }
    bool operator==(const SizeParams&) const = default;
};

// A transform's sizes.
struct LimitTables {
    const char* function;                   // names the search in its exception: "ntt64_params()"
    std::uint32_t payload;                  // bits that a prime beyond the first adds to two points
    std::span<const LimitRow> specialised;  // searched first; may be empty
    std::span<const LimitRow> standard;

    // A size of these primes and this length, listed or not.
    SizeParams size(std::uint32_t primes, std::uint32_t multiplier, std::uint32_t exponent) const;
    SizeParams size(const LimitRow& row) const { return size(row.primes, row.multiplier, row.exponent); }
    // The largest product, in bits, that a listed size holds.
    std::uint64_t largest_capacity() const;

    // The first row whose capacity is at least `bits`, of the specialised list if it has one, otherwise of
    // the standard list. LimitExceededException when neither has.
    SizeParams find(std::uint64_t bits) const;

    // Calls visit(size) for the rows of one list, from the first up to the one that holds `bits`, or to the
    // last: what scratch formulas take the maximum of, as a shorter size may need more than the next one.
    template <typename Visit>
    void visit_rows_up_to(std::span<const LimitRow> rows, std::uint64_t bits, Visit&& visit) const {
        for (const LimitRow& row : rows) {
            const SizeParams params = size(row);
            visit(params);
            if (params.capacity_bits >= bits) return;
        }
    }
    // The same for every size that find() returns for up to `bits`, and with its exception.
    template <typename Visit>
    void visit_sizes_up_to(std::uint64_t bits, Visit&& visit) const {
        const SizeParams last = find(bits);
        visit_rows_up_to(specialised, bits, visit);
        const std::uint64_t served = specialised.empty() ? 0 : size(specialised.back()).capacity_bits;
        if (last.capacity_bits <= served) return;
        visit_rows_up_to(standard, bits, [&](const SizeParams& params) {
            if (params.capacity_bits > served) visit(params);
        });
    }
};

// Half the length with the same primes, for products from a cyclic and a negacyclic convolution.
SizeParams halved(const SizeParams& params);

}  // namespace qmp
