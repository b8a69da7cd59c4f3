#include "platform/memory/registry.h"

#include "platform/memory/interleave_allocator.h"
#include "platform/memory/malloc_allocator.h"
#include "platform/memory/mmap_allocator.h"
#include "platform/menu_layout.h"

namespace qmp {
namespace {

using Registry = ComponentRegistry<BasicAllocator>;

Registry& registry() {
    // Filled on first use; the lines stand in menu order.
    static Registry instance = [] {
        Registry allocators({"Duplicate Allocator Type", "make_allocator()", "Invalid Memory Allocator: "});
        allocators.add<MallocAllocator>();
        allocators.add<MmapAllocator>();
        allocators.add<InterleaveAllocator>();
        return allocators;
    }();
    return instance;
}

}  // namespace

void register_allocator(std::string key, std::unique_ptr<AllocatorFactory> factory) {
    registry().add(std::move(key), std::move(factory));
}

std::unique_ptr<BasicAllocator> make_allocator(std::string_view key) {
    return registry().create(key);
}

std::unique_ptr<BasicAllocator> make_default_allocator(const MemorySystem& system) {
    if (system.nodes->count() < 2) return std::make_unique<MmapAllocator>(system);
    return std::make_unique<InterleaveAllocator>(system);
}

std::unique_ptr<BasicAllocator> make_default_allocator() {
    return make_default_allocator(memory_of_this_machine());
}

std::vector<std::string> allocator_display_names() {
    return registry().display_names();
}

std::unique_ptr<BasicAllocator> select_allocator() {
    return registry().create(menu::choose("Select a Memory Allocator:", allocator_display_names()));
}

}  // namespace qmp
