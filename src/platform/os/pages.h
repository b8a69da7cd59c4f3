// Whole pages of memory from the operating system: large ones, locked ones, pages of a chosen NUMA node.
//
// Committed pages hold zeros. Sizes are multiples of the page's size. What the system cannot hold is refused
// here (null or false), so that nobody is killed while filling it. Any thread may call; nothing throws but
// for want of memory for the program's own small objects.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace qmp::os {

constexpr std::uint64_t page_bytes = 4096;

// Commits pages of a reserved region from one node. Lives on the thread that also writes the pages first: the
// system may choose by the thread that does.
class NodePages {
  public:
    virtual ~NodePages() = default;
    // From the node if it has any left, else from another one. False when the node does not exist or nothing
    // can be asked of it; the pages are not committed then.
    virtual bool commit(void* pages, std::uint64_t bytes) = 0;
};

// Which part of a block the system holds in pages larger than `page_bytes`.
struct LargeShare {
    double fraction = 0.0;
    std::uint64_t page_size = page_bytes;
};

constexpr std::int32_t unknown_node = -1;

class PageSource {
  public:
    virtual ~PageSource() = default;

    // The size of the large pages that are handed out as such; 0 when there are none.
    virtual std::uint64_t large_page_size() const = 0;
    // A block of nothing but large pages, which stay in physical memory. Null when they cannot be had.
    virtual void* commit_large(std::uint64_t bytes) = 0;

    // A block of normal pages. With prefer_large the system may use larger ones by itself, without it must
    // not.
    virtual void* commit(std::uint64_t bytes, bool prefer_large) = 0;
    // What the system did by itself, of a block that has been filled.
    virtual LargeShare large_share(const void* block, std::uint64_t bytes) = 0;

    // A region in which single pages are committed.
    virtual void* reserve(std::uint64_t bytes) = 0;
    virtual std::unique_ptr<NodePages> pages_of_node(std::uint64_t node) = 0;
    virtual bool commit_reserved(void* pages, std::uint64_t bytes) = 0;
    // The nodes on which pages that have been written to stand; unknown_node where the system does not tell.
    // As many nodes as pages.
    virtual void find_nodes(std::span<void* const> pages, std::span<std::int32_t> nodes) = 0;

    // Keeps a filled block in physical memory until it is released. Changes limits of the whole process: one
    // call at a time.
    virtual bool lock(void* block, std::uint64_t bytes) = 0;
    // Of a block or region with the size that it was asked for; blocks of commit_large() have their own.
    virtual void release(void* block, std::uint64_t bytes) = 0;
    virtual void release_large(void* block, std::uint64_t bytes) = 0;
};

PageSource& system_pages();

// What the system's interface for whole pages is called.
const char* page_interface_name();

}  // namespace qmp::os
