// Words to digits to a sink, block by block, with what is to be known about the digits collected on the
// way. With more than one task a block is encoded while the one before it is written.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "numbers/compute_context.h"
#include "radix/digit_sink.h"
#include "radix/output_driver.h"

namespace qmp {

class DigitStream {
  public:
    // Digits that go to the sink at a time.
    static constexpr std::uint64_t block_digits = std::uint64_t{1} << 20;
    static constexpr std::uint64_t last_digits = 100;

    // Radix 10 (words in base 10^19) or 16. `digits` in all. The sink is used by one thread at a time, which
    // need not be the caller's.
    DigitStream(const ComputeContext& context, std::uint32_t radix, std::uint64_t digits, DigitSink& sink);

    // Most words that write() takes: a block's, or as many as the digits need.
    static std::uint64_t block_words(std::uint32_t radix, std::uint64_t digits);
    // Words of the buffers: one for the block that is encoded and, where a second block follows, one for the
    // block that is written.
    static std::uint64_t buffer_words(std::uint32_t radix, std::uint64_t digits, std::uint64_t tasks);

    // Digits that write() has taken.
    std::uint64_t taken() const { return output_.digits; }
    // The digits of n words, words[n - 1] first; what is more than the digits in all is cut off. The words
    // are not looked at any more afterwards. What the sink throws comes out of one of the calls.
    void write(const Word* words, std::uint64_t n);
    // Writes what is left; after the last write(). Digits, their counts and the last of them; no hash.
    const DigitOutput& finish();

  private:
    struct Block {
        char* digits;
        std::uint64_t count;  // 0: nothing to write
    };

    void encode(const Block& block, const Word* words, std::uint64_t n, std::uint64_t tasks);
    void write_to_sink(Block& block);
    void write_while_encoding(Block& written, const Block& encoded, const Word* words, std::uint64_t n);
    void keep_last(const Block& block);

    const ComputeContext& context_;
    std::uint32_t radix_;
    std::uint64_t digits_;
    DigitSink& sink_;
    std::uint64_t word_digits_;
    void (*codec_)(char* raw, const Word* words, std::uint64_t n);
    CheckedWords buffer_;
    std::array<Block, 2> blocks_;  // the next to be encoded, and the one that is not yet written
    bool overlap_;
    std::uint64_t written_ = 0;
    DigitOutput output_;
    std::optional<ScopedLabel> label_;
};

}  // namespace qmp
