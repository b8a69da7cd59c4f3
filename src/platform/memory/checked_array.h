// Arrays between two sentinel words, checked on demand and when freed.
//
// A computation's buffers are checked arrays carved from its reserved heap (a RegionAllocator), or from
// the runtime heap when no region is given. A damaged sentinel is an assertion failure; memory that
// cannot be had is the fatal error "Memory Allocation Failure.".
#pragma once

#include <cstdint>
#include <utility>

#include "platform/memory/region_allocator.h"

namespace qmp {

constexpr std::uint64_t checked_array_sentinel = 0x5451234810025523;

// The overhead, in bytes, that one checked array of this alignment adds to its payload: sentinels,
// header, alignment and its record.
constexpr std::uint64_t checked_array_overhead(std::uint64_t alignment) {
    return alignment + 40 + 8 + 16;
}

// Bytes are rounded up to a multiple of 8; alignments below 8 are raised to 8. An array of 0 bytes is
// the address with all bits set.
void* checked_allocate(RegionAllocator* region, std::uint64_t bytes, std::uint64_t alignment);
// Checks both sentinels and returns the rounded size.
std::uint64_t checked_check(const void* p);
void checked_free(void* p);

// An owned checked array of words, 64-byte aligned.
class CheckedWords {
  public:
    using Word = std::uint64_t;

    CheckedWords() = default;
    CheckedWords(RegionAllocator* region, std::uint64_t words)
        : data_(static_cast<Word*>(checked_allocate(region, words * sizeof(Word), 64))), words_(words) {}
    CheckedWords(CheckedWords&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), words_(std::exchange(other.words_, 0)) {}
    CheckedWords& operator=(CheckedWords&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(words_, other.words_);
        return *this;
    }
    ~CheckedWords() { reset(); }

    void reset() {
        if (data_ && words_) checked_free(data_);
        data_ = nullptr;
        words_ = 0;
    }
    void check() const {
        if (data_ && words_) checked_check(data_);
    }
    Word* data() const { return data_; }
    std::uint64_t words() const { return words_; }

  private:
    Word* data_ = nullptr;
    std::uint64_t words_ = 0;
};

}  // namespace qmp
