// The kernel limits how many mappings a process may have: a heap is never one for every page.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "platform/memory/registry.h"

namespace {

std::uint64_t mappings() {
    std::ifstream maps("/proc/self/maps");
    std::uint64_t count = 0;
    for (std::string line; std::getline(maps, line);) ++count;
    return count;
}

TEST(MappingsOfHeaps, AreFew) {
    for (const char* key : {"mmap", "interleave"}) {
        const std::uint64_t before = mappings();
        const auto block = qmp::make_allocator(key)->create_heap(std::uint64_t{16} << 20, nullptr, 1);
        ASSERT_NE(block->base, nullptr);
        EXPECT_LE(mappings(), before + 16) << key;
    }
}

}  // namespace
