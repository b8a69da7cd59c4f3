#include "platform/memory/mapped_block.h"

#include <limits>
#include <mutex>

namespace qmp {
namespace {

// The limits that locking changes are those of the whole process.
std::mutex& locking() {
    static std::mutex mutex;
    return mutex;
}

}  // namespace

void MappedHeapBlock::hold(void* memory, std::uint64_t bytes, std::uint64_t bytes_of_page) {
    base = memory;
    size = bytes;
    page_size = bytes_of_page;
    from_commit_large_ = false;
}

void MappedHeapBlock::hold_large(void* memory, std::uint64_t bytes, std::uint64_t bytes_of_page) {
    hold(memory, bytes, bytes_of_page);
    from_commit_large_ = true;
}

void MappedHeapBlock::release() {
    if (!base) return;
    if (from_commit_large_) {
        pages_.release_large(base, size);
    } else {
        pages_.release(base, size);
    }
    base = nullptr;
}

std::optional<std::uint64_t> round_up(std::uint64_t bytes, std::uint64_t unit) {
    const std::uint64_t missing = (unit - bytes % unit) % unit;
    if (bytes > std::numeric_limits<std::uint64_t>::max() - missing) return std::nullopt;
    return bytes + missing;
}

void lock_block(MappedHeapBlock& block, const MemorySystem& system, PageMode mode) {
    if (mode == PageMode::disabled) return;
    system.lock_privilege->held();
    {
        const std::lock_guard lock(locking());
        block.locked = system.pages->lock(block.base, block.size) ? 1.0 : 0.0;
    }
    if (block.locked < 1.0 && mode == PageMode::forced) block.release();
}

}  // namespace qmp
