#include "platform/memory/interleaved_commit.h"

#include <array>
#include <memory>
#include <system_error>
#include <vector>

#include "platform/crc32c.h"
#include "platform/memory/page_fill.h"
#include "platform/parallel/run_on_threads.h"

namespace qmp {
namespace {

// Asks for the nodes of many pages at once.
class PlacedPages {
  public:
    explicit PlacedPages(os::PageSource& source) : source_(source) {}

    void add(void* page) {
        batch_[used_++] = page;
        if (used_ == batch_.size()) count();
    }
    NodePageCounts finish() {
        count();
        return counts_;
    }

  private:
    void count() {
        source_.find_nodes({batch_.data(), used_}, {nodes_.data(), used_});
        for (std::size_t i = 0; i < used_; ++i) {
            if (nodes_[i] != os::unknown_node) ++counts_[nodes_[i]];
        }
        used_ = 0;
    }

    os::PageSource& source_;
    std::size_t used_ = 0;
    std::array<void*, 512> batch_;
    std::array<std::int32_t, 512> nodes_;
    NodePageCounts counts_;
};

struct Region {
    char* start;
    std::uint64_t bytes;
};

// Calls visit(page) for the pages of one entry until it returns false; returns whether it never did.
template <typename Visit>
bool visit_pages(const Region& region, std::uint64_t entry, std::uint64_t entries, PageMapping mapping,
                 Visit&& visit) {
    const std::uint64_t pages = region.bytes / os::page_bytes;
    const bool hashed = mapping == PageMapping::hashed;
    const std::uint64_t step = hashed ? 1 : entries;
    for (std::uint64_t i = hashed ? 0 : entry; i < pages; i += step) {
        char* const page = region.start + i * os::page_bytes;
        if (hashed && hashed_entry(page, entries) != entry) continue;
        if (!visit(page)) return false;
    }
    return true;
}

std::optional<NodePageCounts> commit_entry(const MemorySystem& system, const Region& region,
                                           std::uint64_t entry, std::span<const std::uint64_t> nodes,
                                           PageMapping mapping) {
    // A node that does not exist leaves the thread where it is.
    system.nodes->bind_thread(nodes[entry]);
    const std::unique_ptr<os::NodePages> on_node = system.pages->pages_of_node(nodes[entry]);
    PlacedPages placed(*system.pages);
    const bool complete = visit_pages(region, entry, nodes.size(), mapping, [&](void* page) {
        if (!on_node->commit(page, os::page_bytes) && !system.pages->commit_reserved(page, os::page_bytes)) {
            return false;
        }
        fill_range(page, os::page_bytes);
        placed.add(page);
        return true;
    });
    if (!complete) return std::nullopt;
    return placed.finish();
}

}  // namespace

std::uint64_t hashed_entry(const void* page, std::uint64_t entries) {
    return crc32c(0, reinterpret_cast<std::uintptr_t>(page)) % entries;
}

std::optional<NodePageCounts> commit_interleaved(const MemorySystem& system, void* region,
                                                 std::uint64_t bytes, std::span<const std::uint64_t> nodes,
                                                 PageMapping mapping) {
    if (nodes.empty()) return std::nullopt;
    const Region whole{static_cast<char*>(region), bytes};
    std::vector<std::optional<NodePageCounts>> counts(nodes.size());
    auto commit = [&](std::uint64_t i) { counts[i] = commit_entry(system, whole, i, nodes, mapping); };
    FunctionAction action(commit);
    try {
        run_on_threads(action, 0, nodes.size());
    } catch (const std::system_error&) {
        return std::nullopt;  // too many threads
    }
    NodePageCounts sum;
    for (const auto& of_entry : counts) {
        if (!of_entry) return std::nullopt;
        for (const auto& [node, pages] : *of_entry) sum[node] += pages;
    }
    return sum;
}

}  // namespace qmp
