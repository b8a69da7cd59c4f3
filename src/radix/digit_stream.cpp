#include "radix/digit_stream.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

#include "console/format.h"
#include "radix/digit_codecs.h"
#include "radix/digit_counting.h"

namespace qmp {
namespace {

constexpr std::uint64_t smallest_task_words = 2048;
constexpr std::uint64_t most_tasks = 64;
// Words whose digits are still in the nearest cache when they are counted.
constexpr std::uint64_t counted_words = 512;

std::uint64_t digits_per_word(std::uint32_t radix) {
    return radix == 10 ? decimal_digits_per_decimal_word : hexadecimal_digits_per_word;
}

// Words of one block's buffer, in whole cache lines.
std::uint64_t block_buffer_words(std::uint32_t radix, std::uint64_t digits) {
    return (DigitStream::block_words(radix, digits) * digits_per_word(radix) + 63) / 64 * 8;
}

bool overlaps(std::uint32_t radix, std::uint64_t digits, std::uint64_t tasks) {
    return tasks > 1 && DigitStream::block_words(radix, digits) * digits_per_word(radix) < digits;
}

}  // namespace

DigitStream::DigitStream(const ComputeContext& context, std::uint32_t radix, std::uint64_t digits,
                         DigitSink& sink)
    : context_(context),
      radix_(radix),
      digits_(digits),
      sink_(sink),
      word_digits_(digits_per_word(radix)),
      codec_(radix == 10 ? u64_to_d19 : u64_to_h16),
      buffer_(context.allocate(buffer_words(radix, digits, context.parallel.tds))),
      overlap_(overlaps(radix, digits, context.parallel.tds)) {
    Word* second = buffer_.data() + (overlap_ ? block_buffer_words(radix, digits) : 0);
    blocks_ = {{{reinterpret_cast<char*>(buffer_.data()), 0}, {reinterpret_cast<char*>(second), 0}}};
}

std::uint64_t DigitStream::block_words(std::uint32_t radix, std::uint64_t digits) {
    const std::uint64_t width = digits_per_word(radix);
    return std::min(block_digits / width, digits / width + 1);
}

std::uint64_t DigitStream::buffer_words(std::uint32_t radix, std::uint64_t digits, std::uint64_t tasks) {
    return (overlaps(radix, digits, tasks) ? 2 : 1) * block_buffer_words(radix, digits);
}

void DigitStream::write(const Word* words, std::uint64_t n) {
    auto& [next, pending] = blocks_;
    next.count = std::min(n * word_digits_, digits_ - output_.digits);
    if (pending.count > 0) {
        write_while_encoding(pending, next, words, n);
    } else {
        encode(next, words, n, context_.parallel.tds);
    }
    keep_last(next);
    output_.digits += next.count;
    if (overlap_) {
        std::swap(next, pending);
    } else {
        write_to_sink(next);
    }
}

const DigitOutput& DigitStream::finish() {
    write_to_sink(blocks_[1]);
    return output_;
}

void DigitStream::write_to_sink(Block& block) {
    const std::uint64_t count = std::exchange(block.count, 0);
    if (count == 0) return;
    sink_.write(block.digits, count);
    written_ += count;
    label_.emplace(context_.progress, console::format_separated(written_) + "  digits written", 'w');
}

void DigitStream::write_while_encoding(Block& written, const Block& encoded, const Word* words,
                                       std::uint64_t n) {
    // An exception may not leave a task.
    std::exception_ptr failure;
    context_.parallel.run_pair(
        [&] {
            try {
                write_to_sink(written);
            } catch (...) {
                failure = std::current_exception();
            }
        },
        [&] { encode(encoded, words, n, context_.parallel.tds - 1); });
    if (failure) std::rethrow_exception(failure);
}

void DigitStream::encode(const Block& block, const Word* words, std::uint64_t n, std::uint64_t tasks) {
    std::array<radix::DigitCounts, most_tasks> counts{};
    const BlockCut cut = BlockCut::of(n, std::min(tasks, most_tasks), smallest_task_words);
    context_.parallel.run(0, cut.count, [&](std::uint64_t i) {
        const std::uint64_t end = cut.end(i, n);
        for (std::uint64_t at = cut.begin(i); at < end; at += counted_words) {
            const std::uint64_t stop = std::min(at + counted_words, end);
            char* raw = block.digits + at * word_digits_;
            codec_(raw, words + (n - stop), stop - at);
            const std::uint64_t first = std::min(at * word_digits_, block.count);
            radix::count_digits(counts[i], raw, std::min(stop * word_digits_, block.count) - first, radix_);
        }
    });
    for (std::uint64_t i = 0; i < cut.count; ++i) {
        for (std::size_t digit = 0; digit < 16; ++digit) output_.counts[digit] += counts[i][digit];
    }
}

void DigitStream::keep_last(const Block& block) {
    const std::uint64_t kept = std::min(block.count, last_digits);
    std::string& last = output_.last_digits;
    const std::size_t old = last.size();
    last.append(block.digits + (block.count - kept), kept);
    raw_to_hex(last.data() + old, last.data() + old, kept);
    if (last.size() > last_digits) last.erase(0, last.size() - last_digits);
}

}  // namespace qmp
