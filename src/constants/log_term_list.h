// A short sorted list of (key, value) pairs, in place: the terms of a formula under construction, by
// argument, or the primes that it still has to represent.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

namespace kelvara {

class LogTermList {
  public:
    static constexpr std::size_t capacity = 16;

    // Searches make many of them: the entries are left as they are found.
    LogTermList() {}

    struct Entry {
        std::uint64_t key;
        std::int64_t value;
    };

    std::span<const Entry> entries() const { return {entries_.data(), count_}; }
    bool empty() const { return count_ == 0; }

    // Adds to the value of a key, which may become 0 and stays then. False, and nothing is changed, when a
    // new key finds the list full.
    [[nodiscard]] bool add(std::uint64_t key, std::int64_t delta) {
        Entry* const end = entries_.data() + count_;
        Entry* const place = std::lower_bound(
            entries_.data(), end, key, [](const Entry& entry, std::uint64_t k) { return entry.key < k; });
        if (place != end && place->key == key) {
            place->value += delta;
            return true;
        }
        if (count_ == capacity) return false;
        std::move_backward(place, end, end + 1);
        *place = {key, delta};
        count_++;
        return true;
    }

  private:
    std::array<Entry, capacity> entries_;
    std::size_t count_ = 0;
};

}  // namespace kelvara
