// Carves blocks out of one region of memory, first fit, with its records kept at the region's end.
//
// Not thread-safe: one task at a time. Allocation records (16 bytes: address, size) are stored from the
// region's end downward in ascending address order.
#pragma once

#include <cstdint>

namespace qmp {

class RegionAllocator {
  public:
    // The region must be 8-byte aligned and outlive the allocator and every block.
    RegionAllocator(void* region, std::uint64_t bytes);
    RegionAllocator(const RegionAllocator&) = delete;
    RegionAllocator& operator=(const RegionAllocator&) = delete;

    // A block of n bytes whose first word holds this allocator's address, or null when nothing fits.
    void* allocate(std::uint64_t bytes);
    // `raw` must be a block of this allocator.
    void release(void* raw);

    std::uint64_t count() const { return count_; }
    std::uint64_t peak_count() const { return peak_count_; }
    // Highest end of a block ever reached, in bytes from the region's start.
    std::uint64_t peak_bytes() const { return peak_top_ - start_; }
    // Takes what is used now for the peak: of a part of a computation, the use is seen apart.
    void restart_peak() { peak_top_ = top_; }
    // End of the highest live block, in bytes from the region's start.
    std::uint64_t used_bytes() const { return top_ - start_; }

  private:
    struct Record {
        std::uint64_t address;
        std::uint64_t size;
    };
    Record* record(std::uint64_t index) const;

    std::uint64_t start_;
    std::uint64_t table_end_;
    std::uint64_t top_;
    std::uint64_t table_bottom_;
    std::uint64_t count_ = 0;
    std::uint64_t peak_count_ = 0;
    std::uint64_t peak_top_;
};

}  // namespace qmp
