// A heap block of whole pages, and how it is locked in physical memory.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/memory/basic_allocator.h"
#include "platform/memory/memory_system.h"
#include "platform/memory/page_mode.h"

namespace qmp {

class MappedHeapBlock final : public HeapBlock {
  public:
    explicit MappedHeapBlock(os::PageSource& pages) : pages_(pages) {}
    ~MappedHeapBlock() override { release(); }
    MappedHeapBlock(const MappedHeapBlock&) = delete;
    MappedHeapBlock& operator=(const MappedHeapBlock&) = delete;

    // What the block holds until it is released: memory of the page source, of commit_large() or not.
    void hold(void* memory, std::uint64_t bytes, std::uint64_t bytes_of_page);
    void hold_large(void* memory, std::uint64_t bytes, std::uint64_t bytes_of_page);
    // Leaves base null.
    void release();

  private:
    os::PageSource& pages_;
    bool from_commit_large_ = false;
};

// Nothing when the result does not fit 64 bits. The unit is not 0.
std::optional<std::uint64_t> round_up(std::uint64_t bytes, std::uint64_t unit);

// Locks a filled block as the mode asks for it, one block of the process at a time, and sets its locked
// fraction. A block that cannot be locked is released when it must be.
void lock_block(MappedHeapBlock& block, const MemorySystem& system, PageMode mode);

}  // namespace qmp
