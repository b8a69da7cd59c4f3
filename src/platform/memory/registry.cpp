#include "platform/memory/registry.h"

#include "platform/memory/malloc_allocator.h"
#include "platform/menu_layout.h"

namespace qmp {
namespace {

using Registry = ComponentRegistry<BasicAllocator>;

Registry& registry() {
    // Filled on first use; the lines stand in menu order.
    static Registry instance = [] {
        Registry allocators({"Duplicate Allocator Type", "make_allocator()", "Invalid Memory Allocator: "});
        allocators.add<MallocAllocator>();
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

std::unique_ptr<BasicAllocator> make_default_allocator() {
    return std::make_unique<MallocAllocator>();
}

std::vector<std::string> allocator_display_names() {
    return registry().display_names();
}

std::unique_ptr<BasicAllocator> select_allocator() {
    return registry().create(menu::choose("Select a Memory Allocator:", allocator_display_names()));
}

}  // namespace qmp
