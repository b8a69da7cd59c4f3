#include "platform/memory/checked_array.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "console/console.h"
#include "errors/fatal.h"
#include "platform/memory/guarded_words.h"

namespace qmp {
namespace {

// In front of the data: the raw block, the rounded size, the sentinel; behind it the sentinel again. The
// raw block's first word names its region.
constexpr std::int64_t raw_word = -24;
constexpr std::int64_t size_word = -16;
constexpr std::int64_t head_word = -8;

void* no_data() {
    return reinterpret_cast<void*>(~std::uint64_t{0});
}

[[noreturn]] void report_damage(std::uint64_t found, const char* what) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%016llx", static_cast<unsigned long long>(found));
    console::newline();
    console::println(text);
    assertion_failure("Array Bounds Checking: ", what, "");
}

void* allocate_raw(RegionAllocator* region, std::uint64_t bytes) {
    if (region) return region->allocate(bytes);
    void* raw = std::malloc(bytes);
    if (raw) *static_cast<RegionAllocator**>(raw) = nullptr;
    return raw;
}

}  // namespace

void* checked_allocate(RegionAllocator* region, std::uint64_t bytes, std::uint64_t alignment) {
    if (bytes == 0) return no_data();
    alignment = std::max<std::uint64_t>(alignment, 8);
    const bool representable = alignment <= std::numeric_limits<std::uint64_t>::max() - 48 &&
                               bytes <= std::numeric_limits<std::uint64_t>::max() - 48 - alignment;
    const std::uint64_t rounded = (bytes + 7) & ~std::uint64_t{7};
    void* raw = representable ? allocate_raw(region, alignment + 40 + rounded) : nullptr;
    if (!raw) console::fatal_error("Memory Allocation Failure.");

    void* p = place_behind_head(raw, 32, alignment);
    store_guard(p, raw_word, reinterpret_cast<std::uint64_t>(raw));
    store_guard(p, size_word, rounded);
    store_guard(p, head_word, checked_array_sentinel);
    store_guard(p, static_cast<std::int64_t>(rounded), checked_array_sentinel);
    return p;
}

std::uint64_t checked_check(const void* p) {
    if (p == no_data()) return 0;
    const std::uint64_t head = load_guard(p, head_word);
    if (head != checked_array_sentinel) report_damage(head, "An array under-run has been detected.");
    const std::uint64_t rounded = load_guard(p, size_word);
    const std::uint64_t tail = load_guard(p, static_cast<std::int64_t>(rounded));
    if (tail != checked_array_sentinel) report_damage(tail, "An array over-run has been detected.");
    return rounded;
}

void checked_free(void* p) {
    if (!p || p == no_data()) return;
    checked_check(p);
    void* raw = reinterpret_cast<void*>(load_guard(p, raw_word));
    if (RegionAllocator* region = *static_cast<RegionAllocator**>(raw)) {
        region->release(raw);
    } else {
        std::free(raw);
    }
}

}  // namespace qmp
