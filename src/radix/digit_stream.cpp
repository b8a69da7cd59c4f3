#include "radix/digit_stream.h"

#include <algorithm>
#include <array>
#include <string>

#include "console/format.h"
#include "radix/digit_codecs.h"

namespace qmp {
namespace {

constexpr std::uint64_t smallest_task_words = 2048;
constexpr std::uint64_t most_tasks = 64;

std::uint64_t digits_per_word(std::uint32_t radix) {
    return radix == 10 ? decimal_digits_per_decimal_word : hexadecimal_digits_per_word;
}

using Counts = std::array<std::uint64_t, 16>;

// Four counters for each digit: runs of one digit would wait for each other's stores.
Counts count_digits(const char* raw, std::uint64_t n) {
    std::array<std::array<std::uint32_t, 16>, 4> parts{};
    std::uint64_t i = 0;
    for (; i + 4 <= n; i += 4) {
        for (std::uint64_t k = 0; k < 4; ++k) ++parts[k][raw[i + k] & 15];
    }
    for (; i < n; ++i) ++parts[0][raw[i] & 15];
    Counts counts{};
    for (const auto& part : parts) {
        for (std::size_t digit = 0; digit < 16; ++digit) counts[digit] += part[digit];
    }
    return counts;
}

}  // namespace

DigitStream::DigitStream(const ComputeContext& context, std::uint32_t radix, std::uint64_t digits,
                         DigitSink& sink)
    : context_(context),
      digits_(digits),
      sink_(sink),
      word_digits_(digits_per_word(radix)),
      codec_(radix == 10 ? u64_to_d19 : u64_to_h16),
      buffer_(context.allocate(buffer_words(radix, digits))),
      block_(reinterpret_cast<char*>(buffer_.data())) {}

std::uint64_t DigitStream::block_words(std::uint32_t radix, std::uint64_t digits) {
    const std::uint64_t width = digits_per_word(radix);
    return std::min(block_digits / width, digits / width + 1);
}

std::uint64_t DigitStream::buffer_words(std::uint32_t radix, std::uint64_t digits) {
    return (block_words(radix, digits) * digits_per_word(radix) + 7) / 8;
}

void DigitStream::write(const Word* words, std::uint64_t n) {
    const std::uint64_t count = std::min(n * word_digits_, digits_ - output_.digits);
    convert_and_count(words, n, count);
    keep_last(count);
    if (count > 0) sink_.write(block_, count);
    output_.digits += count;
    label_.emplace(context_.progress, console::format_separated(output_.digits) + "  digits written", 'w');
}

void DigitStream::convert_and_count(const Word* words, std::uint64_t n, std::uint64_t count) {
    std::array<Counts, most_tasks> counts;
    const BlockCut cut = BlockCut::of(n, std::min(context_.parallel.tds, most_tasks), smallest_task_words);
    context_.parallel.run(0, cut.count, [&](std::uint64_t i) {
        const std::uint64_t begin = cut.begin(i);
        const std::uint64_t end = cut.end(i, n);
        char* raw = block_ + begin * word_digits_;
        codec_(raw, words + (n - end), end - begin);
        const std::uint64_t first = std::min(begin * word_digits_, count);
        counts[i] = count_digits(raw, std::min(end * word_digits_, count) - first);
    });
    for (std::uint64_t i = 0; i < cut.count; ++i) {
        for (std::size_t digit = 0; digit < 16; ++digit) output_.counts[digit] += counts[i][digit];
    }
}

void DigitStream::keep_last(std::uint64_t count) {
    const std::uint64_t kept = std::min(count, last_digits);
    std::string& last = output_.last_digits;
    const std::size_t old = last.size();
    last.append(block_ + (count - kept), kept);
    raw_to_hex(last.data() + old, last.data() + old, kept);
    if (last.size() > last_digits) last.erase(0, last.size() - last_digits);
}

}  // namespace qmp
