// Cuts the operands of an upper product to what its wanted words depend on.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

namespace qmp {

// The words [skip, end) of a * b, la >= lb. Operand words that only reach product words below skip are
// dropped, and what they would have carried into it is lost: the trimmed product is smaller, by less than
// two units of its word `skip`. Words that only reach product words from end upward are dropped too.
// Trimming again changes nothing.
template <typename W>
struct UpperProduct {
    const W* a;
    std::uint64_t la;
    const W* b;
    std::uint64_t lb;
    std::uint64_t skip;
    std::uint64_t end;

    UpperProduct(std::uint64_t first, std::uint64_t last, const W* x, std::uint64_t lx, const W* y,
                 std::uint64_t ly)
        : a(x), la(lx), b(y), lb(ly), skip(first), end(last) {
        if (la < lb) {
            std::swap(a, b);
            std::swap(la, lb);
        }
        if (skip > lb) {
            const std::uint64_t from_a = skip - lb;
            const std::uint64_t from_b = skip > la ? skip - la : 0;
            a += from_a;
            la -= from_a;
            b += from_b;
            lb -= from_b;
            skip -= from_a + from_b;
            end -= from_a + from_b;
        }
        la = std::min(la, end);
        lb = std::min(lb, end);
    }
};

// The same for a square.
template <typename W>
struct UpperSquare {
    const W* a;
    std::uint64_t la;
    std::uint64_t skip;
    std::uint64_t end;

    UpperSquare(std::uint64_t first, std::uint64_t last, const W* x, std::uint64_t lx)
        : a(x), la(lx), skip(first), end(last) {
        if (skip > la) {
            const std::uint64_t drop = skip - la;
            a += drop;
            la -= drop;
            skip -= 2 * drop;
            end -= 2 * drop;
        }
        la = std::min(la, end);
    }
};

}  // namespace qmp
