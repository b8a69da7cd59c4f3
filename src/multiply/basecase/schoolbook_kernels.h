// The schoolbook on 64-bit words, as a table of functions for each kind of processor. Callers use
// schoolbook.h; only tests have reason to ask for one table.
#pragma once

#include <cstdint>

namespace qmp {

struct SchoolbookKernels {
    // destination[0 .. la + lb) = a * b; la, lb >= 1, in either order.
    void (*multiply)(std::uint64_t* destination, const std::uint64_t* a, std::uint64_t la,
                     const std::uint64_t* b, std::uint64_t lb);
    // destination[0 .. 2n) = a^2, n >= 1.
    void (*square)(std::uint64_t* destination, const std::uint64_t* a, std::uint64_t n);
};

// Any processor.
extern const SchoolbookKernels schoolbook_plain;
// Those with BMI2 and ADX.
extern const SchoolbookKernels schoolbook_adx;
bool schoolbook_adx_supported();

}  // namespace qmp
