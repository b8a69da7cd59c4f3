// Everything a computation runs on: how to run in parallel, the twiddle tables, the reserved memory that
// its numbers are carved from, and where it reports its progress.
#pragma once

#include <cstdint>

#include "console/progress.h"
#include "multiply/multiply_context.h"
#include "numbers/big_float.h"
#include "platform/memory/checked_array.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

class TwiddleSet;

struct ComputeContext {
    ParallelContext parallel;
    const TwiddleSet* twiddles;
    RegionAllocator* region;  // null: the runtime heap (tests)
    Progress* progress;       // never null

    // Scratch for one phase of products, carved from the region.
    CheckedWords allocate(std::uint64_t words) const { return CheckedWords(region, words); }
    MultiplyContext multiply(const CheckedWords& scratch) const {
        return {parallel, twiddles, scratch.data(), scratch.words()};
    }
};

// A BigFloat together with the checked array it lives in.
class OwnedBigFloat {
  public:
    OwnedBigFloat() = default;
    OwnedBigFloat(RegionAllocator* region, std::uint64_t capacity)
        : buffer_(region, capacity), number(buffer_.data(), capacity) {}

    void check() const { buffer_.check(); }

  private:
    CheckedWords buffer_;

  public:
    BigFloat number;
};

}  // namespace qmp
