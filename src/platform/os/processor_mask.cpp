#include "platform/os/processor_mask.h"

#include <algorithm>
#include <bit>
#include <cstdio>

namespace qmp::os {

ProcessorMask ProcessorMask::of(std::uint32_t processor) {
    ProcessorMask mask;
    mask.insert(processor);
    return mask;
}

ProcessorMask ProcessorMask::first(std::uint32_t count) {
    ProcessorMask mask;
    mask.words_.assign(count / 64, ~std::uint64_t{0});
    if (count % 64 != 0) mask.words_.push_back((std::uint64_t{1} << count % 64) - 1);
    return mask;
}

std::uint64_t ProcessorMask::count() const {
    std::uint64_t total = 0;
    for (const std::uint64_t word : words_) total += static_cast<std::uint64_t>(std::popcount(word));
    return total;
}

bool ProcessorMask::contains(std::uint32_t processor) const {
    return processor / 64 < words_.size() && (words_[processor / 64] >> processor % 64 & 1) != 0;
}

void ProcessorMask::insert(std::uint32_t processor) {
    if (processor / 64 >= words_.size()) words_.resize(processor / 64 + 1, 0);
    words_[processor / 64] |= std::uint64_t{1} << processor % 64;
}

std::vector<std::uint32_t> ProcessorMask::processors() const {
    std::vector<std::uint32_t> list;
    for (std::uint32_t i = 0; i < words_.size(); ++i) {
        for (std::uint64_t rest = words_[i]; rest != 0; rest &= rest - 1) {
            list.push_back(i * 64 + static_cast<std::uint32_t>(std::countr_zero(rest)));
        }
    }
    return list;
}

std::optional<std::uint64_t> ProcessorMask::word() const {
    if (words_.size() > 1) return std::nullopt;
    return words_.empty() ? 0 : words_.front();
}

std::string ProcessorMask::text() const {
    if (const auto single = word()) return std::to_string(*single);
    std::string result = "0x";
    for (std::size_t i = words_.size(); i-- > 0;) {
        char digits[17];
        const bool leading = i + 1 == words_.size();
        std::snprintf(digits, sizeof digits, leading ? "%llx" : "%016llx",
                      static_cast<unsigned long long>(words_[i]));
        result += digits;
    }
    return result;
}

void ProcessorMask::drop_empty_words() {
    while (!words_.empty() && words_.back() == 0) words_.pop_back();
}

}  // namespace qmp::os
