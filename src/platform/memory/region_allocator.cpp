#include "platform/memory/region_allocator.h"

#include <algorithm>

#include "errors/fatal.h"

namespace qmp {
namespace {

constexpr std::uint64_t record_bytes = 16;

std::uint64_t address_of(const void* p) {
    return reinterpret_cast<std::uint64_t>(p);
}

}  // namespace

RegionAllocator::RegionAllocator(void* region, std::uint64_t bytes)
    : start_(address_of(region)),
      table_end_((start_ + bytes) & ~std::uint64_t{7}),
      top_(start_),
      table_bottom_(table_end_),
      peak_top_(start_) {
    static_assert(sizeof(Record) == record_bytes);
}

// Record 0 stands nearest the table's end, the next ones below it.
RegionAllocator::Record* RegionAllocator::record(std::uint64_t index) const {
    return reinterpret_cast<Record*>(table_end_ - (index + 1) * record_bytes);
}

void* RegionAllocator::allocate(std::uint64_t bytes) {
    // The first word holds this allocator's address, and every block must leave the next one aligned.
    if (bytes > table_end_ - start_) return nullptr;
    bytes = std::max<std::uint64_t>((bytes + 7) & ~std::uint64_t{7}, 8);

    if (table_bottom_ - top_ < record_bytes) return nullptr;
    std::uint64_t cursor = start_;
    std::uint64_t position = 0;
    while (position < count_ && record(position)->address - cursor < bytes) {
        cursor = record(position)->address + record(position)->size;
        ++position;
    }
    if (position == count_) {
        const std::uint64_t room = table_bottom_ - cursor;
        if (room < record_bytes || room - record_bytes < bytes) return nullptr;
    }
    for (std::uint64_t i = count_; i > position; --i) *record(i) = *record(i - 1);
    *record(position) = {cursor, bytes};

    ++count_;
    table_bottom_ -= record_bytes;
    const Record& last = *record(count_ - 1);
    top_ = last.address + last.size;
    peak_count_ = std::max(peak_count_, count_);
    peak_top_ = std::max(peak_top_, top_);

    void* block = reinterpret_cast<void*>(cursor);
    *static_cast<RegionAllocator**>(block) = this;
    return block;
}

void RegionAllocator::release(void* raw) {
    // The last record whose address is at most that of the block.
    std::uint64_t low = 0;
    std::uint64_t high = count_;
    while (high - low > 1) {
        const std::uint64_t middle = low + (high - low) / 2;
        (record(middle)->address <= address_of(raw) ? low : high) = middle;
    }
    if (count_ == 0 || record(low)->address != address_of(raw)) {
        invalid_function_parameters("RegionAllocator::release()");
    }
    for (std::uint64_t i = low; i + 1 < count_; ++i) *record(i) = *record(i + 1);
    table_bottom_ += record_bytes;
    --count_;
    top_ = count_ == 0 ? start_ : record(count_ - 1)->address + record(count_ - 1)->size;
}

}  // namespace qmp
