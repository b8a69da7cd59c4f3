// Aligned blocks of the runtime heap between two sentinel words, checked when they are freed.
//
// In front of the block p, one word each: p - 24 the address that the runtime heap returned, p - 16 the
// size n, p - 8 the head sentinel; the tail sentinel stands at p + n, unaligned when n is no multiple of 8.
//
// Failures are thrown as plain texts (const char*), not as exception objects.
#pragma once

#include <cstdint>

namespace qmp {

constexpr std::uint64_t guarded_head_sentinel = 0xea097be64bd0187d;
constexpr std::uint64_t guarded_tail_sentinel = 0xc72bf73f0559cfe4;

// Alignments below 8 are raised to 8; one that is no power of two throws "Alignment must be a power of
// two.". Null when the runtime heap has nothing left.
void* aligned_malloc(std::uint64_t bytes, std::uint64_t alignment);

// Ignores null. Throws "Memory buffer has been underrun." or "Memory buffer has been overrun." when a
// sentinel was damaged; the block is not freed then.
void aligned_free(void* p);

// For a block whose raw memory comes from elsewhere in the runtime heap: writes the words around p.
void write_guards(void* p, void* raw, std::uint64_t bytes);

}  // namespace qmp
