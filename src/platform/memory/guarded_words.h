// The words that guarded blocks keep around their data. Behind the data they may be unaligned.
#pragma once

#include <cstdint>
#include <cstring>

namespace qmp {

inline std::uint64_t load_guard(const void* p, std::int64_t offset) {
    std::uint64_t word;
    std::memcpy(&word, static_cast<const char*>(p) + offset, sizeof word);
    return word;
}

inline void store_guard(void* p, std::int64_t offset, std::uint64_t word) {
    std::memcpy(static_cast<char*>(p) + offset, &word, sizeof word);
}

// The block's first usable byte: at least `head` bytes behind its start, at most head + alignment.
inline void* place_behind_head(void* raw, std::uint64_t head, std::uint64_t alignment) {
    const std::uint64_t address = reinterpret_cast<std::uint64_t>(raw) + head;
    return reinterpret_cast<void*>(address / alignment * alignment + alignment);
}

}  // namespace qmp
