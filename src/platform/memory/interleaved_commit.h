// Committing a region page by page, each from its own NUMA node.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "platform/memory/memory_system.h"
#include "platform/memory/node_spread.h"

namespace qmp {

// Which entry of the node list a page belongs to: the entries in turn, or by a hash of the page's address,
// which avoids the regular stride of the first.
enum class PageMapping { round_robin, hashed };

// The list entry, of `entries`, that the page at an address is hashed to.
std::uint64_t hashed_entry(const void* page, std::uint64_t entries);

// Commits the reserved region (whole pages) and fills every page. One thread for each entry of the node list,
// bound to its node, commits and writes the entry's pages: a system that places a page where it is first
// written to then chooses the same node as one that is told. Returns the pages by the node they have come to
// stand on, as far as the system tells it, or nothing when a page or a thread could not be had.
std::optional<NodePageCounts> commit_interleaved(const MemorySystem& system, void* region,
                                                 std::uint64_t bytes, std::span<const std::uint64_t> nodes,
                                                 PageMapping mapping);

}  // namespace qmp
