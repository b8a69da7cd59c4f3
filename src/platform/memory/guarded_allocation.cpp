#include "platform/memory/guarded_allocation.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <limits>

#include "platform/memory/guarded_words.h"

namespace qmp {

void* aligned_malloc(std::uint64_t bytes, std::uint64_t alignment) {
    alignment = std::max<std::uint64_t>(alignment, 8);
    if (!std::has_single_bit(alignment)) throw "Alignment must be a power of two.";
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    if (alignment > largest - 32 || bytes > largest - 32 - alignment) return nullptr;
    void* raw = std::malloc(bytes + alignment + 32);
    if (!raw) return nullptr;
    void* p = place_behind_head(raw, 24, alignment);
    write_guards(p, raw, bytes);
    return p;
}

void write_guards(void* p, void* raw, std::uint64_t bytes) {
    store_guard(p, -24, reinterpret_cast<std::uint64_t>(raw));
    store_guard(p, -16, bytes);
    store_guard(p, -8, guarded_head_sentinel);
    store_guard(p, static_cast<std::int64_t>(bytes), guarded_tail_sentinel);
}

void aligned_free(void* p) {
    if (!p) return;
    if (load_guard(p, -8) != guarded_head_sentinel) throw "Memory buffer has been underrun.";
    const auto bytes = static_cast<std::int64_t>(load_guard(p, -16));
    if (load_guard(p, bytes) != guarded_tail_sentinel) throw "Memory buffer has been overrun.";
    std::free(reinterpret_cast<void*>(load_guard(p, -24)));
}

}  // namespace qmp
