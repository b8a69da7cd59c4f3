// The work of one thread: the same square again and again, each compared with what it must be.
#pragma once

#include <cstddef>
#include <cstdint>

#include "multiply/multiply_context.h"
#include "stress/sizing.h"
#include "stress/stress_test.h"

namespace kelvara {

// words[i] = c^3 * 0x282c82b9175 + 0x282c857661b modulo 2^64, with c = 0x282c8833b79 + i.
void fill_operand(qmp::Word* words, std::uint64_t n);

// h^2 modulo 2^61 - 1, for the hash h of an operand: the hash of its square.
std::uint64_t hash_of_square(std::uint64_t h);

class StressWorkload {
  public:
    // `memory` holds size.part_bytes, 64-byte aligned, and outlives the object, as do the tables.
    StressWorkload(const StressTest& test, const StressTestSize& size, std::byte* memory,
                   const qmp::TwiddleSet* twiddles);

    // Fills the operand and finds out what its square must hash to.
    void prepare();
    // Forms one product; false when it is not the square. Where the multiplication finds an error by itself
    // (AlgorithmFailedException) it is not the square either.
    bool step();

    qmp::Word* operand() const { return operand_; }
    std::uint64_t expected_hash() const { return expected_; }

  private:
    const StressTest& test_;
    std::uint64_t words_;
    qmp::Word* operand_;
    qmp::Word* product_;
    qmp::MultiplyContext context_;
    std::uint64_t expected_ = 0;
};

}  // namespace kelvara
