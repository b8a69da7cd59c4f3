#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <string>

#include "radix/digit_codecs.h"
#include "radix/digit_stream.h"
#include "radix/hash.h"
#include "radix/output_driver.h"
#include "radix/split_number.h"

namespace qmp {
namespace {

// The fractional words of a number, in blocks from the point downward; zeros where it has none.
class FractionBlocks {
  public:
    FractionBlocks(const ComputeContext& context, BigFloatView x, std::uint64_t most)
        : x_(x), copy_(context.allocate(most)) {}

    // The next n words; the first behind the point is the last of the array.
    const Word* next(std::uint64_t n) {
        // Index in x of the block's lowest word.
        position_ -= static_cast<std::int64_t>(n);
        const std::int64_t first = position_ - x_.exp;
        if (first >= 0 && first + static_cast<std::int64_t>(n) <= static_cast<std::int64_t>(x_.L))
            return x_.T + first;
        for (std::uint64_t i = 0; i < n; ++i) {
            const std::int64_t index = first + static_cast<std::int64_t>(i);
            copy_.data()[i] = index >= 0 && index < static_cast<std::int64_t>(x_.L) ? x_.T[index] : 0;
        }
        return copy_.data();
    }

  private:
    BigFloatView x_;
    CheckedWords copy_;
    std::int64_t position_ = 0;  // word position of the last word delivered
};

std::string hexadecimal_text(Word w) {
    char text[17];
    std::snprintf(text, sizeof(text), "%" PRIx64, w);
    return text;
}

// Appends the first `digits` hexadecimal digits of the words, words[n - 1] first, to what h hashes.
std::uint64_t hash_hexadecimal(ParallelContext parallel, std::uint64_t h, const Word* words, std::uint64_t n,
                               std::uint64_t digits) {
    const std::uint64_t whole = std::min(n, digits / 16);
    h = hash_words(parallel, h, binary_word_radix, words + (n - whole), whole);
    const std::uint64_t rest = digits - 16 * whole;
    if (whole == n || rest == 0) return h;
    const Word top_digits = words[n - whole - 1] >> (64 - 4 * rest);
    return check_add(check_mul(h, Word{1} << (4 * rest)), check_reduce(top_digits));
}

}  // namespace

DigitOutput write_hexadecimal(const ComputeContext& context, BigFloatView x, std::uint64_t digits,
                              const OpenSink& open) {
    context.progress->begin_step("Writing Hexadecimal Digits:", "Writing hexadecimal Digits");
    const Word integer = integer_part(x);
    DigitOutput output;
    {
        const std::unique_ptr<DigitSink> sink = open(hexadecimal_text(integer) + ".");
        const std::uint64_t most = DigitStream::block_words(16, digits);
        DigitStream stream(context, 16, digits, *sink);
        FractionBlocks blocks(context, x, most);
        std::uint64_t hash = check_reduce(integer);
        for (std::uint64_t left = (digits + 15) / 16; left > 0;) {
            const std::uint64_t n = std::min(left, most);
            const Word* words = blocks.next(n);
            hash = hash_hexadecimal(context.parallel, hash, words, n, digits - stream.taken());
            stream.write(words, n);
            left -= n;
        }
        output = stream.finish();
        sink->finish();
        output.hash = hash;
    }
    context.progress->end_step();
    return output;
}

std::uint64_t hexadecimal_output_bytes(std::uint64_t digits, std::uint64_t tasks) {
    const std::uint64_t buffers =
        DigitStream::buffer_words(16, digits, tasks) + DigitStream::block_words(16, digits);
    return 8 * buffers + 2 * checked_array_overhead(64);
}

}  // namespace qmp
