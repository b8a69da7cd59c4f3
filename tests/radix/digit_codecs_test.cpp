#include "radix/digit_codecs.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "multiply/instruction_levels.h"
#include "platform/processor_features.h"
#include "radix/word_codecs.h"
#include "support/random_words.h"

namespace qmp {
namespace {

using kelvara_test::Random;

// The digits of one word, one division at a time.
std::string naive_digits(std::uint64_t word, std::uint32_t radix, int width, bool text) {
    std::string digits(static_cast<std::size_t>(width), '\0');
    for (int i = width - 1; i >= 0; --i) {
        const std::size_t v = word % radix;
        digits[static_cast<std::size_t>(i)] = text ? "0123456789abcdef"[v] : static_cast<char>(v);
        word /= radix;
    }
    return digits;
}

template <typename W>
std::string naive_string(const std::vector<W>& words, std::uint32_t radix, int width, bool text) {
    std::string digits;
    for (std::size_t i = words.size(); i-- > 0;) digits += naive_digits(words[i], radix, width, text);
    return digits;
}

template <typename W>
std::vector<W> words_below(Random& random, std::uint64_t n, std::uint64_t base) {
    std::vector<W> words(n);
    for (auto& w : words) {
        switch (random.between(0, 4)) {
            case 0:
                w = static_cast<W>(base - 1 - random.between(0, 10));
                break;
            case 1:
                w = static_cast<W>(random.between(0, 10));
                break;
            default:
                w = static_cast<W>(base ? random.next() % base : random.next());
                break;
        }
    }
    return words;
}

// Runs a codec into a garbage-filled buffer at an odd address and checks that nothing behind is touched.
template <typename W>
std::string run(void (*codec)(char*, const W*, std::uint64_t), const std::vector<W>& words,
                std::size_t width) {
    const std::size_t bytes = words.size() * width;
    std::string buffer(bytes + 33, '\x55');
    codec(buffer.data() + 1, words.data(), words.size());
    EXPECT_EQ(buffer[0], '\x55');
    EXPECT_EQ(buffer.substr(bytes + 1), std::string(32, '\x55'));
    return buffer.substr(1, bytes);
}

class WordCodecLevels : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        const std::string level = GetParam();
        if (level == "SSE4.1") {
            if (!processor_features().ssse3 || !processor_features().sse41) GTEST_SKIP() << "no SSE4.1";
            codecs = &radix::sse4_word_codecs();
        }
        if (level == "AVX2") {
            if (!supported(InstructionLevel::avx2)) GTEST_SKIP() << "no AVX2";
            codecs = &radix::avx2_word_codecs();
        }
        if (level == "AVX-512") {
            if (!supported(InstructionLevel::avx512)) GTEST_SKIP() << "no AVX-512";
            codecs = &radix::avx512_word_codecs();
        }
        ASSERT_STREQ(codecs->level, GetParam());
    }
    const radix::WordCodecs* codecs = &radix::scalar_word_codecs();
};

TEST_P(WordCodecLevels, WordsOf64Bits) {
    Random random(1);
    for (std::uint64_t n = 0; n <= 200; ++n) {
        const auto decimal = words_below<Word>(random, n, decimal_word_base);
        EXPECT_EQ(run(codecs->u64_to_d19, decimal, 19), naive_string(decimal, 10, 19, false));
        EXPECT_EQ(run(codecs->u64_to_d19_text, decimal, 19), naive_string(decimal, 10, 19, true));
        const auto binary = words_below<Word>(random, n, 0);
        EXPECT_EQ(run(codecs->u64_to_h16, binary, 16), naive_string(binary, 16, 16, false));
        EXPECT_EQ(run(codecs->u64_to_h16_text, binary, 16), naive_string(binary, 16, 16, true));
    }
}

TEST_P(WordCodecLevels, WordsOf32Bits) {
    Random random(2);
    for (std::uint64_t n = 0; n < 40; ++n) {
        const auto decimal = words_below<std::uint32_t>(random, n, 100000000);
        EXPECT_EQ(run(codecs->u32_to_d8, decimal, 8), naive_string(decimal, 10, 8, false));
        EXPECT_EQ(run(codecs->u32_to_d8_text, decimal, 8), naive_string(decimal, 10, 8, true));
        const auto binary = words_below<std::uint32_t>(random, n, 0);
        EXPECT_EQ(run(codecs->u32_to_h8, binary, 8), naive_string(binary, 16, 8, false));
        EXPECT_EQ(run(codecs->u32_to_h8_text, binary, 8), naive_string(binary, 16, 8, true));
    }
}

TEST_P(WordCodecLevels, DigitsBackToWords) {
    Random random(3);
    for (std::uint64_t n = 0; n <= 200; ++n) {
        const auto decimal = words_below<Word>(random, n, decimal_word_base);
        std::vector<Word> back(n + 1, kelvara_test::garbage);
        codecs->d19_to_u64(back.data(), ("x" + naive_string(decimal, 10, 19, false)).data() + 1, n);
        EXPECT_EQ(std::vector<Word>(back.begin(), back.end() - 1), decimal);
        EXPECT_EQ(back.back(), kelvara_test::garbage);
    }
}

// The order of compressed digit files: digits into garbage at odd addresses, words between sentinels.
TEST_P(WordCodecLevels, TheFirstWordFirst) {
    Random random(6);
    const auto pack = [](void (*codec)(Word*, const char*, std::uint64_t), const std::string& digits,
                         std::uint64_t n) {
        std::vector<Word> words(n + 2, kelvara_test::garbage);
        // At the very end of an allocation, so that a sanitizer sees what is read behind it.
        std::vector<char> source(digits.begin(), digits.end());
        codec(words.data() + 1, source.data(), n);
        EXPECT_EQ(words.front(), kelvara_test::garbage);
        EXPECT_EQ(words.back(), kelvara_test::garbage);
        return std::vector<Word>(words.begin() + 1, words.end() - 1);
    };
    for (std::uint64_t n = 0; n <= 200; ++n) {
        const auto decimal = words_below<Word>(random, n, decimal_word_base);
        std::vector<Word> reversed(decimal.rbegin(), decimal.rend());
        ASSERT_EQ(run(codecs->unpack_d19, decimal, 19), naive_string(reversed, 10, 19, false));
        ASSERT_EQ(run(codecs->unpack_d19_text, decimal, 19), naive_string(reversed, 10, 19, true));
        ASSERT_EQ(pack(codecs->pack_d19, naive_string(reversed, 10, 19, false), n), decimal);
        const auto binary = words_below<Word>(random, n, 0);
        reversed.assign(binary.rbegin(), binary.rend());
        ASSERT_EQ(run(codecs->unpack_h16, binary, 16), naive_string(reversed, 16, 16, false));
        ASSERT_EQ(run(codecs->unpack_h16_text, binary, 16), naive_string(reversed, 16, 16, true));
        ASSERT_EQ(pack(codecs->pack_h16, naive_string(reversed, 16, 16, false), n), binary);
    }
}

// Quotients by 10^8 that stand on a rounded product: words around multiples of it.
TEST_P(WordCodecLevels, WordsAroundMultiples) {
    Random random(7);
    constexpr Word ten_8 = 100000000;
    for (int round = 0; round < 3000; ++round) {
        std::vector<Word> words(17);
        for (Word& w : words) {
            Word multiple = random.next() % (decimal_word_base / ten_8);
            if (random.between(0, 3) == 0) multiple -= multiple % ten_8;
            w = multiple * ten_8 + (random.between(0, 1) ? 0 : ten_8 - 1);
        }
        ASSERT_EQ(run(codecs->u64_to_d19, words, 19), naive_string(words, 10, 19, false));
    }
}

// Every value of every group of digits: all quotients that stand on rounded reciprocals.
TEST_P(WordCodecLevels, EveryQuotient) {
    for (std::uint32_t v = 0; v < 10000; ++v) {
        const std::vector<std::uint32_t> words = {v, v * 10000, v * 10000 + 9999, v * 10000 + v};
        ASSERT_EQ(run(codecs->u32_to_d8, words, 8), naive_string(words, 10, 8, false)) << v;
    }
    for (Word v = 0; v < 1000; ++v) {
        const std::vector<Word> words = {v * 10000000000000000u, v * 10000000000000000u + 9999999999999999u};
        ASSERT_EQ(run(codecs->u64_to_d19, words, 19), naive_string(words, 10, 19, false)) << v;
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, WordCodecLevels, testing::Values("scalar", "SSE4.1", "AVX2", "AVX-512"),
                         [](const auto& level) {
                             std::string name = level.param;
                             std::erase_if(name, [](char c) { return c == '.' || c == '-'; });
                             return name;
                         });

TEST(DigitCodecs, KnownWords) {
    char digits[20] = {};
    const Word nines = decimal_word_base - 1;
    u64_to_d19_text(digits, &nines, 1);
    EXPECT_STREQ(digits, "9999999999999999999");
    const Word zero = 0;
    u64_to_d19_text(digits, &zero, 1);
    EXPECT_STREQ(digits, "0000000000000000000");
    const Word ascending = 0x0123456789ABCDEF;
    u64_to_h16_text(digits, &ascending, 1);
    EXPECT_EQ(std::string(digits, 16), "0123456789abcdef");
}

TEST(DigitCodecs, HexadecimalDigitsBackToWords) {
    Random random(5);
    for (std::uint64_t n = 0; n < 40; ++n) {
        const auto binary = words_below<Word>(random, n, 0);
        std::vector<Word> back(n + 1, kelvara_test::garbage);
        h16_to_u64(back.data(), ("x" + naive_string(binary, 16, 16, false)).data() + 1, n);
        EXPECT_EQ(std::vector<Word>(back.begin(), back.end() - 1), binary);
        EXPECT_EQ(back.back(), kelvara_test::garbage);
    }
}

TEST(DigitCodecs, AreListedWithTheirInstructionSets) {
    std::string listed;
    for (const DigitCodec& codec : digit_codecs()) {
        listed += std::string(codec.name) + " " + codec.instruction_set + "\n";
    }
    EXPECT_EQ(listed,
              "raw_to_hex SSE2\nraw_to_dec SSE2\nhex_to_raw SSE2\ndec_to_raw SSE2\n"
              "u32_to_h8 SSE4.1\nu32_to_d8 SSE4.1\nu64_to_h16 AVX-512\nu64_to_d19 AVX-512\n"
              "h16_to_u64 AVX-512\nd19_to_u64 AVX-512\n");
}

TEST(DigitCodecs, TheChosenLevelIsInOrderOfDigits) {
    Random random(4);
    const auto words = words_below<Word>(random, 5, decimal_word_base);
    EXPECT_EQ(run(u64_to_d19, words, 19), naive_string(words, 10, 19, false));
    EXPECT_EQ(run(u64_to_d19_text, words, 19), naive_string(words, 10, 19, true));
    EXPECT_EQ(run(u64_to_h16, words, 16), naive_string(words, 16, 16, false));
    EXPECT_EQ(run(u64_to_h16_text, words, 16), naive_string(words, 16, 16, true));
    std::vector<Word> back(5);
    d19_to_u64(back.data(), run(u64_to_d19, words, 19).data(), 5);
    EXPECT_EQ(back, words);
    h16_to_u64(back.data(), run(u64_to_h16, words, 16).data(), 5);
    EXPECT_EQ(back, words);
    const std::vector<std::uint32_t> small_words = {12345678, 0, 99999999};
    EXPECT_EQ(run(u32_to_d8_text, small_words, 8), "999999990000000012345678");
    EXPECT_EQ(run(u32_to_d8, small_words, 8), naive_string(small_words, 10, 8, false));
    EXPECT_EQ(run(u32_to_h8_text, small_words, 8), naive_string(small_words, 16, 8, true));
    EXPECT_EQ(run(u32_to_h8, small_words, 8), naive_string(small_words, 16, 8, false));
}

// Lengths and offsets around every block size of the vector loops, in place and into another buffer.
TEST(CharacterCodecs, EveryLengthAndAlignment) {
    Random random(5);
    for (std::uint64_t offset = 0; offset < 17; ++offset) {
        for (std::uint64_t n = 0; n < 150; ++n) {
            for (const std::uint32_t radix : {10u, 16u}) {
                std::string raw(n, '\0');
                std::string text(n, '\0');
                for (std::uint64_t i = 0; i < n; ++i) {
                    const std::uint64_t v = random.between(0, radix - 1);
                    raw[i] = static_cast<char>(v);
                    text[i] = "0123456789abcdef"[v];
                }
                std::string buffer = std::string(offset, '~') + raw + "~";
                (radix == 10 ? raw_to_dec : raw_to_hex)(buffer.data() + offset, buffer.data() + offset, n);
                ASSERT_EQ(buffer, std::string(offset, '~') + text + "~");
                std::string other(n + offset + 1, '~');
                ASSERT_TRUE((radix == 10 ? dec_to_raw : hex_to_raw)(other.data() + offset, text.data(), n));
                ASSERT_EQ(other, std::string(offset, '~') + raw + "~");
                ASSERT_TRUE((radix == 10 ? dec_to_raw : hex_to_raw)(buffer.data() + offset,
                                                                    buffer.data() + offset, n));
                ASSERT_EQ(buffer, other);
            }
        }
    }
}

// Every byte at every place of the blocks is judged alike, and the rest is converted all the same.
TEST(CharacterCodecs, EveryInvalidByteIsSeen) {
    const std::string digits = "0123456789abcdef";
    for (const std::uint64_t place : {0u, 5u, 20u, 70u, 129u}) {
        for (int c = 0; c < 256; ++c) {
            const std::size_t value = c ? digits.find(static_cast<char>(c)) : std::string::npos;
            alignas(16) char text[130];
            alignas(16) char raw[131];
            for (char& t : text) t = '7';
            text[place] = static_cast<char>(c);
            EXPECT_EQ(dec_to_raw(raw + 1, text, 130), value < 10) << c;
            EXPECT_EQ(raw[1 + (place == 0 ? 1 : 0)], 7);
            EXPECT_EQ(static_cast<unsigned char>(raw[1 + place]), static_cast<unsigned char>(c - '0'));
            EXPECT_EQ(hex_to_raw(raw + 1, text, 130), value < 16) << c;
            EXPECT_EQ(raw[130 - (place == 129 ? 1 : 0)], 7);
            if (value < 16) {
                EXPECT_EQ(static_cast<std::size_t>(raw[1 + place]), value);
            }
        }
    }
}

}  // namespace
}  // namespace qmp
