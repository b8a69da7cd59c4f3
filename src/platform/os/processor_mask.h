// A set of processors of one processor group, by their numbers within the group.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qmp::os {

// Groups of more than 64 processors exist, so a mask is as long as its highest processor needs. Masks are
// ordered by their size and content, for the use as keys.
class ProcessorMask {
  public:
    ProcessorMask() = default;
    // Bit k is processor k.
    explicit ProcessorMask(std::uint64_t bits) : words_{bits} { drop_empty_words(); }
    static ProcessorMask of(std::uint32_t processor);
    // Processors 0 to count - 1.
    static ProcessorMask first(std::uint32_t count);

    bool empty() const { return words_.empty(); }
    std::uint64_t count() const;
    bool contains(std::uint32_t processor) const;
    void insert(std::uint32_t processor);
    // Ascending.
    std::vector<std::uint32_t> processors() const;

    // The mask as one word; nothing when a processor beyond 63 is in it.
    std::optional<std::uint64_t> word() const;
    // A decimal number, or a hexadecimal one ("0x...") when it takes more than 64 bits.
    std::string text() const;

    auto operator<=>(const ProcessorMask&) const = default;

  private:
    void drop_empty_words();

    // The lowest processors first; the last word is never 0, so that equal sets are equal masks.
    std::vector<std::uint64_t> words_;
};

}  // namespace qmp::os
