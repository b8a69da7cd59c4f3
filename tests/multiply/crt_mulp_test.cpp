#include "multiply/crt_mulp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "errors/exception.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/fatal.h"
#include "support/random_words.h"
#include "support/residues_reference.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::cyclic_residue;
using kelvara_test::GuardedWords;
using kelvara_test::negacyclic_residue;
using kelvara_test::Pattern;
using kelvara_test::Random;
using kelvara_test::ReferenceResidue;
using qmp::CRT_mulp;
using qmp::MultiplyContext;
using qmp::Word;
using Words = std::vector<Word>;

constexpr Word ones = ~Word{0};

// Convolutions by the schoolbook method: a transformed operand is a copy, and which of the two transforms
// made it.
class PlainParameters final : public qmp::NegacyclicParameters {
  public:
    explicit PlainParameters(std::uint64_t n, bool other_zero = false) : other_zero_(other_zero) {
        convolution_bits = 64 * n;
        operand_words = (n + 1 + 7) / 8 * 8;
        scratch_words = 24;
    }

    void forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                 std::uint64_t length) const override {
        copy(context, transformed, operand, length, cyclic_mark);
    }
    void forward_for_square(const MultiplyContext& context, Word* transformed, const Word* operand,
                            std::uint64_t length) const override {
        copy(context, transformed, operand, length, square_mark);
    }
    void inverse_multiply(const MultiplyContext& context, Word* a, const Word* b, Word* destination,
                          std::uint64_t first, std::uint64_t end) const override {
        cyclic(context, a, b, destination, first, end, cyclic_mark);
    }
    void inverse_square(const MultiplyContext& context, Word* a, Word* destination, std::uint64_t first,
                        std::uint64_t end) const override {
        cyclic(context, a, a, destination, first, end, square_mark);
    }
    bool compatible_with(const TransformParameters&) const override { return false; }

    void forward_negacyclic(const MultiplyContext& context, Word* transformed, const Word* operand,
                            std::uint64_t length) const override {
        copy(context, transformed, operand, length, negacyclic_mark);
    }
    bool inverse_multiply_negacyclic(const MultiplyContext& context, Word* a, const Word* b,
                                     Word* destination) const override {
        overwrite_scratch(context);
        const ReferenceResidue residue = negacyclic_residue(product(a, b, negacyclic_mark), words());
        std::copy(residue.words.begin(), residue.words.end(), destination);
        std::fill(a, a + operand_words, kelvara_test::garbage);
        return residue.degenerate;
    }

  private:
    static constexpr Word cyclic_mark = 1, square_mark = 2, negacyclic_mark = 3;

    std::uint64_t words() const { return convolution_words(); }
    void overwrite_scratch(const MultiplyContext& context) const {
        ASSERT_GE(context.scratch_words, scratch_words);
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(context.scratch) % 64, 0u);
        kelvara_test::fill_garbage(context.scratch, scratch_words);
    }
    void copy(const MultiplyContext& context, Word* transformed, const Word* operand, std::uint64_t length,
              Word mark) const {
        overwrite_scratch(context);
        ASSERT_LE(length, words());
        std::fill(transformed, transformed + operand_words, 0);
        std::copy(operand, operand + length, transformed);
        transformed[words()] = mark;
    }
    Words product(const Word* a, const Word* b, Word mark) const {
        EXPECT_EQ(a[words()], mark);
        EXPECT_EQ(b[words()], mark);
        return kelvara_test::reference_product(Words(a, a + words()), Words(b, b + words()));
    }
    void cyclic(const MultiplyContext& context, Word* a, const Word* b, Word* destination,
                std::uint64_t first, std::uint64_t end, Word mark) const {
        overwrite_scratch(context);
        Words residue = cyclic_residue(product(a, b, mark), words()).words;
        if (other_zero_ && residue == Words(words(), 0)) residue.assign(words(), ones);
        std::copy(residue.begin() + static_cast<std::ptrdiff_t>(first),
                  residue.begin() + static_cast<std::ptrdiff_t>(end), destination);
        std::fill(a, a + operand_words, kelvara_test::garbage);
    }

    bool other_zero_;
};

template <typename W>
void expect_window(const MultiplyContext& context, const qmp::NegacyclicParameters& params,
                   const std::vector<W>& expected, std::uint64_t first, std::uint64_t end, const W* a,
                   std::uint64_t la, const W* b, std::uint64_t lb) {
    std::vector<W> found(end - first + 2, static_cast<W>(kelvara_test::garbage));
    CRT_mulp<W>(context, params, found.data(), first, end, a, la, b, lb);
    ASSERT_TRUE(std::equal(found.begin(), found.end() - 2, expected.begin() + static_cast<std::ptrdiff_t>(first)))
        << la << " x " << lb << ", words " << first << " to " << end;
    ASSERT_EQ(found[end - first], static_cast<W>(kelvara_test::garbage));
    ASSERT_EQ(found[end - first + 1], static_cast<W>(kelvara_test::garbage));
}

// The whole product, in both orders, and windows of it.
void expect_product(const Words& a, const Words& b, std::uint64_t n) {
    for (const bool other_zero : {false, true}) {
        const PlainParameters params(n, other_zero);
        GuardedWords scratch(qmp::crt_mulp_scratch_words(params));
        const MultiplyContext context = sequential_context(scratch);
        const std::uint64_t la = a.size(), lb = b.size(), l = la + lb;
        const Words expected = kelvara_test::reference_product(a, b);
        expect_window(context, params, expected, 0, l, a.data(), la, b.data(), lb);
        expect_window(context, params, expected, 0, l, b.data(), lb, a.data(), la);
        const std::uint64_t edges[] = {0, 1, l / 3, std::min(n, l), l - 1, l};
        for (std::uint64_t first : edges) {
            for (std::uint64_t end : edges) {
                if (first > end) continue;
                expect_window(context, params, expected, first, end, a.data(), la, b.data(), lb);
            }
        }
        EXPECT_TRUE(scratch.guards_intact());
    }
}

TEST(CrtMulp, AllLengths) {
    Random random(1);
    for (std::uint64_t n : {1, 2, 3, 4, 7}) {
        for (std::uint64_t la = 1; la < 2 * n; ++la) {
            for (std::uint64_t lb = 1; la + lb <= 2 * n; ++lb) {  // both fold, and 2n words exactly
                for (Pattern pattern : kelvara_test::all_patterns) {
                    const Words a = make_words(random, la, pattern), b = make_words(random, lb, pattern);
                    expect_product(a, b, n);
                }
            }
        }
    }
}

TEST(CrtMulp, NoHighHalf) {
    Random random(2);
    expect_product(make_words(random, 3), make_words(random, 5), 8);  // fewer than n words
    expect_product({7, 0, 0, 0, 0}, {9, 0, 0}, 4);
    expect_product({0, 0, 0}, {0, 0}, 3);
    expect_product({0, 0, 0, 0}, {5}, 3);
}

// A long operand that is -1, 0 or 1 modulo one of the two.
TEST(CrtMulp, DegenerateResidues) {
    Random random(3);
    constexpr std::uint64_t n = 4;
    const Words minus_one = {0, 0, 0, 0, 1, 0};          // R^n
    const Words minus_one_again = {41, 0, 0, 0, 42, 0};  // 41 + 42 R^n
    const Words zero = {ones, ones, ones, ones, 0, 0};   // R^n - 1
    const Words other_zero = {42, 1, 0, 0, 42, 1};       // 42 + R + (42 + R) R^n
    for (const Words& a : {minus_one, minus_one_again, zero, other_zero}) {
        for (const Words& b :
             {Words{0, 0}, Words{1, 0}, Words{2, 0}, Words{0, 1}, Words{ones, ones}, make_words(random, 2)}) {
            expect_product(a, b, n);
        }
    }
}

// The product, not an operand, is R^n modulo R^n + 1: R^(n/2) squared, and 2^32 R^(n-1) times 2^32.
TEST(CrtMulp, DegenerateProduct) {
    expect_product({0, 0, 1, 0}, {0, 0, 1, 0}, 4);
    expect_product({0, 0, 0, Word{1} << 32}, {Word{1} << 32}, 4);
    expect_product({0, 0, 0, 1, 0}, {0, 1, 0}, 4);
}

TEST(CrtMulp, Squares) {
    Random random(4);
    for (std::uint64_t n : {1, 5, 8}) {
        for (Pattern pattern : kelvara_test::all_patterns) {
            const Words a = make_words(random, n, pattern);
            const PlainParameters params(n);
            GuardedWords scratch(qmp::crt_mulp_scratch_words(params));
            expect_window(sequential_context(scratch), params, kelvara_test::reference_product(a, a), 0,
                          2 * n, a.data(), n, a.data(), n);
            EXPECT_TRUE(scratch.guards_intact());
        }
    }
}

TEST(CrtMulp, WordsOf32Bits) {
    Random random(5);
    for (std::uint64_t n : {1, 2, 5}) {
        const PlainParameters params(n);
        GuardedWords scratch(qmp::crt_mulp_scratch_words(params));
        const MultiplyContext context = sequential_context(scratch);
        for (std::uint64_t la = 1; la < 4 * n; ++la) {
            for (std::uint64_t lb = 1; la + lb <= 4 * n; ++lb) {
                Words wide_a(2 * n, 0), wide_b(2 * n, 0);
                const Words words_a = make_words(random, 2 * n, Pattern::runs),
                            words_b = make_words(random, 2 * n);
                std::memcpy(wide_a.data(), words_a.data(), 4 * la);
                std::memcpy(wide_b.data(), words_b.data(), 4 * lb);
                std::vector<std::uint32_t> a(la), b(lb), expected(8 * n);
                std::memcpy(a.data(), wide_a.data(), 4 * la);
                std::memcpy(b.data(), wide_b.data(), 4 * lb);
                const Words product = kelvara_test::reference_product(wide_a, wide_b);
                std::memcpy(expected.data(), product.data(), 32 * n);
                for (std::uint64_t first : {std::uint64_t{0}, std::uint64_t{1}, (la + lb) / 2}) {
                    expect_window(context, params, expected, first, la + lb, a.data(), la, b.data(), lb);
                    expect_window(context, params, expected, first, la + lb - 1, b.data(), lb, a.data(), la);
                }
                if (2 * la <= 4 * n) {
                    const Words square = kelvara_test::reference_product(wide_a, wide_a);
                    std::memcpy(expected.data(), square.data(), 32 * n);
                    expect_window(context, params, expected, 0, 2 * la, a.data(), la, a.data(), la);
                }
            }
        }
        EXPECT_TRUE(scratch.guards_intact());
    }
}

TEST(CrtMulp, ScratchOneShort) {
    const PlainParameters params(3);
    const std::uint64_t needed = qmp::crt_mulp_scratch_words(params);
    EXPECT_EQ(needed, 2 * (8 + 8) + 24u);
    GuardedWords scratch(needed - 1);
    const Words a{1, 2, 3};
    Words product(6);
    try {
        CRT_mulp(sequential_context(scratch), params, product.data(), 0, 6, a.data(), 3, a.data(), 3);
        FAIL();
    } catch (const qmp::BufferTooSmallException& e) {
        EXPECT_EQ(e.function(), "CRT_mulp()");
        EXPECT_EQ(e.buffer_size(), needed - 1);
        EXPECT_EQ(e.required_size(), needed);
    }
}

#if GTEST_HAS_DEATH_TEST
TEST(CrtMulpDeathTest, LengthChecks) {
    PlainParameters params(4);
    GuardedWords scratch(qmp::crt_mulp_scratch_words(params));
    const MultiplyContext context = sequential_context(scratch);
    const Words a(8, 1);
    Words product(16);
    EXPECT_FATAL(CRT_mulp(context, params, product.data(), 0, 9, a.data(), 5, a.data(), 4),
                 "CRT_mulp\\(\\): Convolution length is not long enough\\.");
    const std::vector<std::uint32_t> narrow(16, 1);
    std::vector<std::uint32_t> narrow_product(32);
    EXPECT_FATAL(CRT_mulp(context, params, narrow_product.data(), 0, 17, narrow.data(), 16, narrow.data(), 1),
                 "CRT_mulp\\(\\): Convolution length is not long enough\\.");
    params.convolution_bits = 250;
    EXPECT_FATAL(CRT_mulp(context, params, product.data(), 0, 2, a.data(), 1, a.data(), 1),
                 "CRT_mulp\\(\\): Convolution length is not divisible by the word-size\\.");
    EXPECT_FATAL(CRT_mulp(context, params, narrow_product.data(), 0, 2, narrow.data(), 1, narrow.data(), 1),
                 "CRT_mulp\\(\\): Convolution length is not divisible by the word-size\\.");
}
#endif

}  // namespace
