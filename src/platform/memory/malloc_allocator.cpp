#include "platform/memory/malloc_allocator.h"

#include <cstdlib>
#include <limits>

#include "console/console.h"
#include "platform/memory/guarded_allocation.h"
#include "platform/memory/guarded_words.h"
#include "platform/memory/page_fill.h"
#include "platform/os/memory.h"

namespace qmp {
namespace {

class MallocHeapBlock final : public HeapBlock {
  public:
    ~MallocHeapBlock() override {
        try {
            aligned_free(base);
        } catch (const char* message) {
            // A destructor must not throw, and there is no going on with a damaged heap.
            console::fatal_error(message);
        }
    }
};

}  // namespace

std::unique_ptr<HeapBlock> MallocAllocator::create_heap(std::uint64_t bytes, BasicParallelizer* parallelizer,
                                                        std::uint64_t tasks) {
    constexpr std::uint64_t overhead = 96;
    auto block = std::make_unique<MallocHeapBlock>();
    block->size = bytes;
    // A system that promises more memory than it has would kill the program in the middle of the fill.
    if (bytes > std::numeric_limits<std::uint64_t>::max() - overhead || !os::can_be_committed(bytes))
        return block;
    void* raw = std::malloc(bytes + overhead);
    if (!raw) return block;
    os::prefer_large_pages(raw, bytes + overhead);
    block->base = place_behind_head(raw, 24, 64);
    write_guards(block->base, raw, bytes);
    fill_pages(block->base, bytes, parallelizer, tasks);
    return block;
}

}  // namespace qmp
