#include "heap_table.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <optional>

#include "platform/memory/interleave_allocator.h"
#include "platform/memory/malloc_allocator.h"
#include "platform/memory/mmap_allocator.h"
#include "platform/parallel/push_pool_parallelizer.h"

namespace bench {
namespace {

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// A heap of some size: its seconds, without those of its release, and what it turned out to be.
struct Heap {
    double seconds;
    double large;
    double locked;
};
using MakeHeap = std::function<std::optional<Heap>(std::uint64_t bytes, std::uint64_t tasks)>;

std::optional<Heap> heap_of(qmp::BasicAllocator& allocator, std::uint64_t bytes, std::uint64_t tasks) {
    static qmp::PushPoolParallelizer pool;
    pool.warm_up();
    const double start = now();
    // A quarter of a decomposition is what memory is filled with.
    const auto block = allocator.create_heap(bytes, &pool, 4 * tasks);
    const double seconds = now() - start;
    if (!block->base) return std::nullopt;
    return Heap{seconds, block->large, block->locked};
}

std::optional<Heap> heap_of_malloc(std::uint64_t bytes, std::uint64_t tasks) {
    qmp::MallocAllocator allocator;
    return heap_of(allocator, bytes, tasks);
}

template <qmp::PageMode large, qmp::PageMode locked>
std::optional<Heap> heap_of_mmap(std::uint64_t bytes, std::uint64_t tasks) {
    qmp::MmapAllocator allocator;
    allocator.large_pages = large;
    allocator.locked_pages = locked;
    return heap_of(allocator, bytes, tasks);
}

template <bool hashed>
std::optional<Heap> heap_of_interleave(std::uint64_t bytes, std::uint64_t tasks) {
    qmp::InterleaveAllocator allocator;
    allocator.hashed = hashed;
    const std::vector<std::uint64_t> nodes = allocator.nodes;
    while (allocator.nodes.size() < tasks)
        allocator.nodes.push_back(nodes[allocator.nodes.size() % nodes.size()]);
    return heap_of(allocator, bytes, tasks);
}

// Nothing but the memory and one pass over it, on one thread.
template <bool prefer_large>
std::optional<Heap> fresh_memory(std::uint64_t bytes, std::uint64_t) {
    qmp::os::PageSource& pages = qmp::os::system_pages();
    const double start = now();
    void* const block = pages.commit(bytes, prefer_large);
    if (!block) return std::nullopt;
    std::memset(block, 1, bytes);
    const double seconds = now() - start;
    const double large = pages.large_share(block, bytes).fraction;
    pages.release(block, bytes);
    return Heap{seconds, large, 0};
}

struct Row {
    const char* name;
    MakeHeap make;
};

const std::vector<Row>& rows() {
    using enum qmp::PageMode;
    static const std::vector<Row> list = {
        {"memset, small pages", fresh_memory<false>},
        {"memset, huge pages if any", fresh_memory<true>},
        {"malloc", heap_of_malloc},
        {"mmap, small, not locked", heap_of_mmap<disabled, disabled>},
        {"mmap, small, locked", heap_of_mmap<disabled, attempt>},
        {"mmap, large, not locked", heap_of_mmap<attempt, disabled>},
        {"mmap, large, locked", heap_of_mmap<attempt, attempt>},
        {"interleave, round-robin", heap_of_interleave<false>},
        {"interleave, hashed", heap_of_interleave<true>},
    };
    return list;
}

std::optional<Heap> median(const Row& row, std::uint64_t bytes, std::uint64_t tasks, std::uint64_t rounds) {
    std::vector<Heap> heaps;
    for (std::uint64_t i = 0; i < rounds; ++i) {
        const auto heap = row.make(bytes, tasks);
        if (!heap) return std::nullopt;
        heaps.push_back(*heap);
    }
    std::sort(heaps.begin(), heaps.end(), [](const Heap& a, const Heap& b) { return a.seconds < b.seconds; });
    return heaps[heaps.size() / 2];
}

bool print_row(const Row& row, std::uint64_t bytes, std::uint64_t tasks, std::uint64_t rounds) {
    const auto heap = median(row, bytes, tasks, rounds);
    if (!heap) {
        std::printf("  %-28s not enough memory\n", row.name);
        return false;
    }
    std::printf("  %-28s %9.3f %11.2f %8.0f%% %8.0f%%\n", row.name, heap->seconds * 1e3,
                static_cast<double>(bytes) / heap->seconds / (1 << 30), heap->large * 100,
                heap->locked * 100);
    std::fflush(stdout);
    return true;
}

}  // namespace

bool print_heaps(const Options& options) {
    bool complete = true;
    for (const std::uint64_t size : options.sizes) {
        for (const std::uint64_t tasks : options.tasks) {
            std::printf("\nHeap of %llu MiB, %llu task%s; reserved and filled, median of %llu\n",
                        static_cast<unsigned long long>(size), static_cast<unsigned long long>(tasks),
                        tasks == 1 ? "" : "s", static_cast<unsigned long long>(options.rounds));
            std::printf("  %-28s %9s %11s %9s %9s\n", "", "ms", "GiB/s", "huge", "locked");
            for (const Row& row : rows()) complete &= print_row(row, size << 20, tasks, options.rounds);
        }
    }
    return complete;
}

}  // namespace bench
