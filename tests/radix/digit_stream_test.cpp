#include "radix/digit_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <string>
#include <vector>

#include "errors/exception.h"
#include "radix/digit_codecs.h"
#include "radix/recording.h"
#include "radix/thread_per_task.h"
#include "support/random_words.h"

namespace qmp {
namespace {

using kelvara_test::Random;
using kelvara_test::RecordingProgress;
using kelvara_test::RecordingSink;
using kelvara_test::ThreadPerTask;

const ParallelContext one_task = ParallelContext::sequential();

std::vector<Word> decimal_words(std::uint64_t n) {
    Random random(3);
    std::vector<Word> words(n);
    for (Word& w : words) w = random.next() % decimal_word_base;
    return words;
}

// The first digits of the words, from the top, in blocks as large as they may be.
void write_blocks(DigitStream& stream, const std::vector<Word>& words, std::uint64_t digits) {
    const std::uint64_t most = DigitStream::block_words(10, digits);
    std::uint64_t left = (digits + 18) / 19;
    // A copy that is spoilt after every block: the stream may not look at it any more.
    std::vector<Word> block;
    for (const Word* end = words.data() + words.size(); left > 0;) {
        const std::uint64_t n = std::min(left, most);
        block.assign(end - n, end);
        stream.write(block.data(), n);
        kelvara_test::fill_garbage(block.data(), n);
        end -= n;
        left -= n;
    }
}

// Decimal words through several blocks: 19 digits to the word, the last word cut.
TEST(DigitStream, SeveralBlocksOfDecimalWords) {
    ThreadPerTask threads;
    const std::vector<Word> words = decimal_words(180000);
    std::string text(words.size() * 19, '\0');
    u64_to_d19_text(text.data(), words.data(), words.size());
    for (const std::uint64_t digits : {3300000u, 2200000u, 1048573u, 1048572u, 18u}) {
        for (const std::uint64_t tasks : {1u, 2u, 3u, 16u, 100u}) {
            RecordingProgress progress;
            const ComputeContext context{threads.context(tasks), nullptr, nullptr, &progress};
            std::string written;
            RecordingSink sink(written, nullptr, "");
            DigitStream stream(context, 10, digits, sink);
            write_blocks(stream, words, digits);
            EXPECT_EQ(stream.taken(), digits);
            const DigitOutput& output = stream.finish();
            EXPECT_TRUE(written == text.substr(0, digits)) << digits << " digits, " << tasks << " tasks";
            EXPECT_EQ(output.digits, digits);
            EXPECT_EQ(output.last_digits,
                      text.substr(digits > 100 ? digits - 100 : 0, std::min<std::uint64_t>(digits, 100)));
            std::array<std::uint64_t, 16> counts{};
            for (const char c : written) ++counts[static_cast<std::size_t>(c - '0')];
            EXPECT_EQ(output.counts, counts);
            for (const std::uint64_t block : sink.blocks) EXPECT_LE(block, DigitStream::block_digits);
            EXPECT_EQ(sink.blocks.size(), (digits + 1048571) / 1048572);
        }
    }
}

// Last digits that stand in two blocks.
TEST(DigitStream, LastDigitsAcrossBlocks) {
    RecordingProgress progress;
    const ComputeContext context{one_task, nullptr, nullptr, &progress};
    std::string written;
    RecordingSink sink(written, nullptr, "");
    DigitStream stream(context, 16, 160, sink);
    const std::vector<Word> first(7, 0xaaaaaaaaaaaaaaaa);
    const std::vector<Word> second(3, 0xbbbbbbbbbbbbbbbb);
    stream.write(first.data(), 7);
    stream.write(second.data(), 3);
    EXPECT_EQ(stream.finish().last_digits, std::string(52, 'a') + std::string(48, 'b'));
}

// The second half of the memory is there only when there is a second block to encode meanwhile.
TEST(DigitStream, OneBufferOrTwo) {
    const std::uint64_t one = DigitStream::buffer_words(10, 5000000, 1);
    EXPECT_EQ(DigitStream::buffer_words(10, 5000000, 2), 2 * one);
    EXPECT_EQ(DigitStream::buffer_words(10, 5000000, 64), 2 * one);
    EXPECT_EQ(DigitStream::buffer_words(10, 1048572, 2), one);
    EXPECT_EQ(DigitStream::buffer_words(16, 1048577, 2), 2 * DigitStream::buffer_words(16, 1048577, 1));
    EXPECT_LT(DigitStream::buffer_words(10, 100, 2), 20u);
}

// Fails at its second block. No two calls may meet.
class FailingSink final : public DigitSink {
  public:
    void write(char*, std::uint64_t) override {
        EXPECT_FALSE(busy_.exchange(true));
        ++blocks;
        busy_ = false;
        if (blocks == 2) throw AlgorithmFailedException("FailingSink", "full");
    }
    int blocks = 0;

  private:
    std::atomic<bool> busy_{false};
};

// Whoever writes, its exception comes out on the caller's thread, and nothing is written after it.
TEST(DigitStream, TheSinksExceptionComesOut) {
    ThreadPerTask threads;
    const std::vector<Word> words = decimal_words(230000);
    for (const std::uint64_t tasks : {1u, 2u, 5u}) {
        RecordingProgress progress;
        const ComputeContext context{threads.context(tasks), nullptr, nullptr, &progress};
        FailingSink sink;
        {
            DigitStream stream(context, 10, 4300000, sink);
            EXPECT_THROW(write_blocks(stream, words, 4300000), AlgorithmFailedException);
        }
        EXPECT_EQ(sink.blocks, 2);
        EXPECT_EQ(progress.depth, 0);
    }
}

// The last block's exception comes out of finish().
TEST(DigitStream, TheLastBlocksException) {
    ThreadPerTask threads;
    const std::vector<Word> words = decimal_words(80000);
    RecordingProgress progress;
    const ComputeContext context{threads.context(2), nullptr, nullptr, &progress};
    FailingSink sink;
    DigitStream stream(context, 10, 1500000, sink);
    write_blocks(stream, words, 1500000);
    EXPECT_EQ(sink.blocks, 1);
    EXPECT_THROW(stream.finish(), AlgorithmFailedException);
    EXPECT_EQ(sink.blocks, 2);
}

}  // namespace
}  // namespace qmp
