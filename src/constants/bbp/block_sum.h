// The sum of a block of successive k of one series: the runs that the kernels take, and where their digits
// go.
#pragma once

#include <cstdint>
#include <vector>

#include "constants/bbp/fraction.h"
#include "constants/bbp/terms.h"

namespace kelvara::bbp {

// k of one block: what threads take at a time.
constexpr std::uint64_t block_terms = most_terms_of_sums;

// How many k, from 0 on, have an exponent of at least 1.
std::uint64_t count_of_powers(const Term& term);
// Whether every modulus of a power is within the kernels' limit, for k below `count`.
bool within_limit(const Term& term, std::uint64_t count);

// One thread's part of a sum. Its memory is reserved by the constructor.
class BlockSum {
  public:
    BlockSum(const Kernels& kernels, std::uint64_t words);

    // Adds the terms of [first, end), at most block_terms of them.
    void add(const Term& term, std::uint64_t first, std::uint64_t end);
    const ChunkFraction& fraction() const { return fraction_; }

  private:
    void add_powers(const Term& term, std::uint64_t first, std::uint64_t count);
    void add_small_terms(const Term& term, std::uint64_t first, std::uint64_t count);

    const Kernels& kernels_;
    ChunkFraction fraction_;
    std::vector<std::uint64_t> sums_;
};

}  // namespace kelvara::bbp
