// Words to digits to a sink, block by block, with what is to be known about the digits collected on the
// way.
#pragma once

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

    // Radix 10 (words in base 10^19) or 16. `digits` in all.
    DigitStream(const ComputeContext& context, std::uint32_t radix, std::uint64_t digits, DigitSink& sink);

    // Most words that write() takes: a block's, or as many as the digits need.
    static std::uint64_t block_words(std::uint32_t radix, std::uint64_t digits);
    // Words of the block's buffer.
    static std::uint64_t buffer_words(std::uint32_t radix, std::uint64_t digits);

    // The digits of n words, words[n - 1] first; what is more than the digits in all is cut off.
    void write(const Word* words, std::uint64_t n);

    // Digits, their counts and the last of them; no hash.
    const DigitOutput& output() const { return output_; }

  private:
    void convert_and_count(const Word* words, std::uint64_t n, std::uint64_t count);
    void keep_last(std::uint64_t count);

    const ComputeContext& context_;
    std::uint64_t digits_;
    DigitSink& sink_;
    std::uint64_t word_digits_;
    void (*codec_)(char* raw, const Word* words, std::uint64_t n);
    CheckedWords buffer_;
    char* block_;
    DigitOutput output_;
    std::optional<ScopedLabel> label_;
};

}  // namespace qmp
