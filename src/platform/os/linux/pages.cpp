#include "platform/os/pages.h"

#include <linux/mempolicy.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>

#include "platform/os/linux/mappings.h"
#include "platform/os/memory.h"

namespace qmp::os {
namespace {

// Of the transparent huge pages of this processor architecture: one entry of the page directory.
constexpr std::uint64_t transparent_page = std::uint64_t{2} << 20;

// The kernel has no more nodes than this.
constexpr std::uint64_t most_nodes = 1024;

// A mapping stands between two pages that nobody may touch. Otherwise the kernel would join it with a
// neighbour that has the same properties, and what it tells of the mapping would be about both.
constexpr std::uint64_t margin = page_bytes;

char* address(void* start, std::uint64_t bytes) {
    return static_cast<char*>(start) + bytes;
}

// Readable and writable memory that starts at a multiple of the alignment; null when there is none.
void* map_between_margins(std::uint64_t bytes, std::uint64_t alignment) {
    if (bytes == 0 || bytes >= std::uint64_t{1} << 62 || !can_be_committed(bytes)) return nullptr;
    const std::uint64_t outer = bytes + 2 * margin + alignment;
    void* const mapped = mmap(nullptr, outer, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) return nullptr;
    const std::uint64_t skipped = alignment - (reinterpret_cast<std::uintptr_t>(mapped) + margin) % alignment;
    void* const start = address(mapped, skipped);
    munmap(mapped, skipped);
    const std::uint64_t behind = outer - skipped - bytes - 2 * margin;
    if (behind != 0) munmap(address(start, bytes + 2 * margin), behind);
    void* const block = address(start, margin);
    if (mprotect(block, bytes, PROT_READ | PROT_WRITE) != 0) {
        munmap(start, bytes + 2 * margin);
        return nullptr;
    }
    return block;
}

// The memory policy of the thread it lives on.
class SystemNodePages final : public NodePages {
  public:
    explicit SystemNodePages(std::uint64_t node) : preferred_(prefer(node)) {}
    ~SystemNodePages() override {
        if (preferred_) syscall(SYS_set_mempolicy, MPOL_DEFAULT, nullptr, 0);
    }

    // The region is committed as a whole already: its pages come with the first write.
    bool commit(void*, std::uint64_t) override { return preferred_; }

  private:
    static bool prefer(std::uint64_t node) {
        if (node >= most_nodes) return false;
        std::array<unsigned long, most_nodes / 64> nodes{};
        nodes[node / 64] |= 1ul << (node % 64);
        // The kernel reads one bit less than it is told.
        return syscall(SYS_set_mempolicy, MPOL_PREFERRED, nodes.data(), most_nodes + 1) == 0;
    }

    bool preferred_;
};

class SystemPages final : public PageSource {
  public:
    std::uint64_t large_page_size() const override {
        static const std::uint64_t size = [] {
            std::ifstream meminfo("/proc/meminfo");
            return huge_page_size(meminfo);
        }();
        return size;
    }

    // Huge pages that the administrator has reserved. Besides the mapping the pages themselves are asked for
    // here: where a control group allows fewer of them, the first write would end the program.
    void* commit_large(std::uint64_t bytes) override {
        void* const block =
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_HUGETLB, -1, 0);
        if (block == MAP_FAILED) return nullptr;
        if (madvise(block, bytes, MADV_POPULATE_WRITE) == 0) return block;
        munmap(block, bytes);
        return nullptr;
    }

    void* commit(std::uint64_t bytes, bool prefer_large) override {
        const bool large = prefer_large && bytes >= transparent_page;
        void* const block = map_between_margins(bytes, large ? transparent_page : page_bytes);
        // Either is a hint to kernels that have such pages.
        if (block) madvise(block, bytes, prefer_large ? MADV_HUGEPAGE : MADV_NOHUGEPAGE);
        return block;
    }

    LargeShare large_share(const void* block, std::uint64_t bytes) override {
        if (bytes < transparent_page) return {};
        std::ifstream smaps("/proc/self/smaps");
        const std::uint64_t huge = huge_page_bytes(smaps, reinterpret_cast<std::uintptr_t>(block), bytes);
        if (huge == 0) return {};
        return {std::min(1.0, static_cast<double>(huge) / static_cast<double>(bytes)), transparent_page};
    }

    void* reserve(std::uint64_t bytes) override { return commit(bytes, false); }

    std::unique_ptr<NodePages> pages_of_node(std::uint64_t node) override {
        return std::make_unique<SystemNodePages>(node);
    }

    bool commit_reserved(void*, std::uint64_t) override { return true; }

    void find_nodes(std::span<void* const> pages, std::span<std::int32_t> nodes) override {
        const long result = syscall(SYS_move_pages, 0, pages.size(), pages.data(), nullptr, nodes.data(), 0);
        if (result != 0) {
            std::fill(nodes.begin(), nodes.end(), unknown_node);
            return;
        }
        // Instead of a node, an error's negated number.
        for (std::int32_t& node : nodes) node = std::max(node, unknown_node);
    }

    bool lock(void* block, std::uint64_t bytes) override {
        if (mlock(block, bytes) == 0) return true;
        munlock(block, bytes);  // it may have got halfway
        return false;
    }

    void release(void* block, std::uint64_t bytes) override {
        munmap(static_cast<char*>(block) - margin, bytes + 2 * margin);
    }
    void release_large(void* block, std::uint64_t bytes) override { munmap(block, bytes); }
};

}  // namespace

PageSource& system_pages() {
    static SystemPages pages;
    return pages;
}

const char* page_interface_name() {
    return "Linux mmap()";
}

}  // namespace qmp::os
