// The memory allocators of this build, by type key and in menu order.
//
// A further allocator is one more line in registry.cpp. What callers need to make one by its key stands in
// basic_allocator.h.
#pragma once

#include "platform/component_registry.h"
#include "platform/memory/basic_allocator.h"
#include "platform/memory/memory_system.h"

namespace qmp {

using AllocatorFactory = ComponentFactory<BasicAllocator>;

// Appends to the menu. A key registered twice prints "Duplicate Allocator Type" and ends the program with
// exit code 1. Before main only.
void register_allocator(std::string key, std::unique_ptr<AllocatorFactory> factory);

// Of a machine with several NUMA nodes, their interleaving; else "mmap".
std::unique_ptr<BasicAllocator> make_default_allocator(const MemorySystem& system);

// "Select a Memory Allocator:" and a new allocator of the kind chosen.
std::unique_ptr<BasicAllocator> select_allocator();

}  // namespace qmp
