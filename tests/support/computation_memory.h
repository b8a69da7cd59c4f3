// The reserved memory that a computation runs in, of an exact size, and its context.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "numbers/compute_context.h"
#include "support/random_words.h"
#include "support/twiddle_memory.h"

namespace kelvara_test {

class ComputationMemory {
  public:
    // What a session reserves beyond the estimate of a computation.
    static constexpr std::uint64_t reserve = (std::uint64_t{1} << 20) + 64;

    ComputationMemory(std::uint64_t estimate, std::uint64_t largest_product)
        : words_((estimate + reserve) / sizeof(qmp::Word), garbage),
          region_(words_.data(), words_.size() * sizeof(qmp::Word)),
          twiddles_(largest_product) {}

    qmp::ComputeContext context(qmp::ParallelContext parallel, qmp::Progress* progress) {
        return {parallel, twiddles_.get(), &region_, progress};
    }
    const qmp::RegionAllocator& region() const { return region_; }
    qmp::RegionAllocator& region() { return region_; }

    // Garbage for everything above the highest block, up to where the region's records may be.
    void forget_unused() {
        const std::uint64_t used = region_.used_bytes() / sizeof(qmp::Word);
        fill_garbage(words_.data() + used, words_.size() - records - used);
    }
    // Bytes from there on that hold something else now.
    std::uint64_t bytes_written(std::uint64_t from) const {
        const auto begin = words_.begin() + static_cast<std::ptrdiff_t>(from / sizeof(qmp::Word));
        const auto end = words_.end() - static_cast<std::ptrdiff_t>(records);
        return sizeof(qmp::Word) * static_cast<std::uint64_t>(end - begin - std::count(begin, end, garbage));
    }

  private:
    static constexpr std::uint64_t records = 1024;  // words

    std::vector<qmp::Word> words_;
    qmp::RegionAllocator region_;
    TwiddleMemory twiddles_;
};

}  // namespace kelvara_test
