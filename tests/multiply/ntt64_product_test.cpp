// The algorithm "N64": products of the rows of its size lists, by several routes.
#include <gtest/gtest.h>
#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "errors/exception.h"
#include "multiply/algorithm_table.h"
#include "multiply/fft/fft_algorithm.h"
#include "multiply/instruction_levels.h"
#include "multiply/ntt64/ntt64_algorithm.h"
#include "multiply/ntt64/ntt64_params.h"
#include "multiply/ntt64/size_tables.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/random_words.h"
#include "support/twiddled_context.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::Pattern;
using kelvara_test::Random;
using kelvara_test::TwiddledContext;
using qmp::MultiplyContext;
using qmp::ParallelContext;
using qmp::SizeParams;
using qmp::Word;
using Words = std::vector<Word>;

constexpr Word ones = ~Word{0};

const qmp::Algorithm64& n64() {
    return qmp::ntt64::algorithm64();
}

// One level, restored afterwards.
class Ntt64Levels : public testing::TestWithParam<std::size_t> {
  protected:
    void SetUp() override {
        const auto level = static_cast<qmp::InstructionLevel>(GetParam());
        if (!qmp::supported(level)) GTEST_SKIP() << qmp::name_of(level) << " is not supported here";
        qmp::force_level(qmp::name_of(level));
    }
    void TearDown() override { qmp::force_level(""); }
};
std::string level_name(const testing::TestParamInfo<std::size_t>& parameter) {
    std::string name;
    for (const char* p = qmp::name_of(static_cast<qmp::InstructionLevel>(parameter.param)); *p; ++p) {
        if (std::isalnum(static_cast<unsigned char>(*p))) name += *p;
    }
    return name;
}

// The levels that have kernels of their own.
INSTANTIATE_TEST_SUITE_P(Levels, Ntt64Levels,
                         testing::Values(static_cast<std::size_t>(qmp::InstructionLevel::avx512),
                                         static_cast<std::size_t>(qmp::InstructionLevel::scalar)),
                         level_name);

// (2^(64 la) - 1) * (2^(64 lb) - 1) = 2^(64 (la + lb)) - 2^(64 la) - 2^(64 lb) + 1, la >= lb.
void expect_product_of_ones(const Word* product, std::uint64_t la, std::uint64_t lb) {
    ASSERT_EQ(product[0], 1u);
    for (std::uint64_t i = 1; i < la + lb; ++i) {
        const Word expected = i < lb ? 0 : i == la ? ones - 1 : ones;
        ASSERT_EQ(product[i], expected) << "word " << i << " of " << la << " + " << lb;
    }
}

Words product_of(const MultiplyContext& context, const Words& a, const Words& b) {
    GuardedWords product(a.size() + b.size());
    n64().multiply(context, product.data(), a.data(), a.size(), b.data(), b.size());
    EXPECT_TRUE(product.guards_intact());
    return product.value();
}

Words halved_product_of(const MultiplyContext& context, const Words& a, const Words& b, std::uint64_t skip,
                        std::uint64_t end) {
    GuardedWords product(end - skip);
    n64().upper_product_halved(context, product.data(), skip, end, a.data(), a.size(), b.data(), b.size());
    EXPECT_TRUE(product.guards_intact());
    return product.value();
}

std::uint64_t scratch_for(std::uint64_t n) {
    return std::max(n64().psize(n, 1), n64().psize_halved(n, 1));
}

// The longest product of every short row, of all-ones words: the largest coefficients there are.
TEST_P(Ntt64Levels, OnesAtTheLargestSizeOfEveryRow) {
    constexpr std::uint64_t longest = 26000;
    TwiddledContext own(longest, scratch_for(longest));
    std::uint32_t row_primes = 0, row_multipliers = 0;
    qmp::ntt64::limit_tables.visit_rows_up_to(
        qmp::ntt64::specialised_rows, 64 * longest, [&](const SizeParams& row) {
            const std::uint64_t n = row.capacity_bits / 64;
            if (n > longest) return;
            row_primes |= 1u << row.primes;
            row_multipliers |= 1u << row.multiplier;
            const std::uint64_t lb = n % 3 == 0 ? n / 3 : n / 2;
            const Words a(n - lb, ones), b(lb, ones);
            expect_product_of_ones(product_of(own.context(), a, b).data(), n - lb, lb);
            expect_product_of_ones(halved_product_of(own.context(), b, a, 0, n).data(), n - lb, lb);
            // The square of the same words: one transform serves for both.
            GuardedWords square(n / 2 * 2);
            n64().multiply(own.context(), square.data(), a.data(), std::min(n / 2, n - lb), a.data(),
                           std::min(n / 2, n - lb));
            expect_product_of_ones(square.data(), std::min(n / 2, n - lb), std::min(n / 2, n - lb));
        });
    EXPECT_EQ(row_primes, 0x3e0u);      // 5 to 9
    EXPECT_EQ(row_multipliers, 0xaau);  // 1, 3, 5, 7
    EXPECT_TRUE(own.guards_intact());
}

TEST_P(Ntt64Levels, EveryPatternAgainstTheFft) {
    constexpr std::uint64_t longest = 6000;
    TwiddledContext own(longest, std::max(scratch_for(longest), qmp::fft::algorithm64().psize(longest, 1)));
    Random random(20);
    for (std::uint64_t n : {2, 3, 64, 1000, 2048, 2049, 3000, 4097, 6000}) {
        for (Pattern pattern : kelvara_test::all_patterns) {
            const std::uint64_t lb = random.between(1, n - 1);
            const Words a = make_words(random, n - lb, pattern), b = make_words(random, lb, pattern);
            Words expected(n);
            qmp::fft::algorithm64().multiply(own.context(), expected.data(), a.data(), n - lb, b.data(), lb);
            ASSERT_EQ(product_of(own.context(), a, b), expected) << n << " words";
            ASSERT_EQ(halved_product_of(own.context(), a, b, 0, n), expected) << n << " words";
        }
    }
    EXPECT_TRUE(own.guards_intact());
}

#ifdef KELVARA_HAVE_GMP
TEST_P(Ntt64Levels, AgainstGmp) {
    constexpr std::uint64_t longest = 30000;
    TwiddledContext own(longest, scratch_for(longest));
    Random random(21);
    for (std::uint64_t round = 0; round < 12 * kelvara_test::multiplier(); ++round) {
        const std::uint64_t n = random.between(2, longest);
        const std::uint64_t lb = random.between(1, n / 2), la = n - lb;
        const Words a = make_words(random, la, kelvara_test::all_patterns[round % 5]);
        const Words b = make_words(random, lb, Pattern::uniform);
        Words expected(n);
        mpn_mul(reinterpret_cast<mp_limb_t*>(expected.data()), reinterpret_cast<const mp_limb_t*>(a.data()),
                static_cast<mp_size_t>(la), reinterpret_cast<const mp_limb_t*>(b.data()),
                static_cast<mp_size_t>(lb));
        ASSERT_EQ(product_of(own.context(), a, b), expected) << la << " x " << lb;
        ASSERT_EQ(halved_product_of(own.context(), b, a, 0, n), expected) << lb << " x " << la;
    }
}
#endif

TEST_P(Ntt64Levels, UpperProducts) {
    TwiddledContext own(600, scratch_for(600));
    Random random(22);
    for (int round = 0; round < 20; ++round) {
        const std::uint64_t la = random.between(1, 300), lb = random.between(1, 300);
        const Words a = make_words(random, la, Pattern::runs), b = make_words(random, lb, Pattern::runs);
        const Words whole = kelvara_test::reference_product(a, b);
        const std::uint64_t end = random.between(1, la + lb), skip = random.between(0, end - 1);
        const Words expected(whole.begin() + static_cast<std::ptrdiff_t>(skip),
                             whole.begin() + static_cast<std::ptrdiff_t>(end));
        GuardedWords part(end - skip);
        n64().upper_product(own.context(), part.data(), skip, end, a.data(), la, b.data(), lb);
        ASSERT_EQ(part.value(), expected);
        ASSERT_TRUE(part.guards_intact());
        ASSERT_EQ(halved_product_of(own.context(), a, b, skip, end), expected);

        const Words square = kelvara_test::reference_product(a, a);
        const std::uint64_t stop = random.between(1, 2 * la), start = random.between(0, stop - 1);
        GuardedWords square_part(stop - start);
        n64().upper_square(own.context(), square_part.data(), start, stop, a.data(), la);
        ASSERT_EQ(square_part.value(), Words(square.begin() + static_cast<std::ptrdiff_t>(start),
                                             square.begin() + static_cast<std::ptrdiff_t>(stop)));
        ASSERT_TRUE(square_part.guards_intact());
    }
    EXPECT_TRUE(own.guards_intact());
}

// 32-bit words are the same bytes; odd counts end in the middle of a 64-bit word.
TEST_P(Ntt64Levels, WordsOf32Bits) {
    TwiddledContext own(5000, scratch_for(5000));
    Random random(23);
    const qmp::Algorithm32& narrow = qmp::ntt64::algorithm32();
    for (std::uint64_t la : {1, 2, 63, 1001, 4500}) {
        for (std::uint64_t lb : {1, 5, 64, 999}) {
            std::vector<std::uint32_t> a(la), b(lb), product(la + lb + 2, 0xfeedbeef);
            for (auto& word : a) word = static_cast<std::uint32_t>(random.next());
            for (auto& word : b)
                word = random.between(0, 1) ? 0xffffffff : static_cast<std::uint32_t>(random.next());
            narrow.multiply(own.context(), product.data(), a.data(), la, b.data(), lb);
            Words wide_a((la + 1) / 2, 0), wide_b((lb + 1) / 2, 0);
            std::memcpy(wide_a.data(), a.data(), 4 * la);
            std::memcpy(wide_b.data(), b.data(), 4 * lb);
            const Words expected = kelvara_test::reference_product(wide_a, wide_b);
            ASSERT_EQ(std::memcmp(product.data(), expected.data(), 4 * (la + lb)), 0) << la << " x " << lb;
            EXPECT_EQ(product[la + lb], 0xfeedbeef);

            std::vector<std::uint32_t> part(la + lb, 0xfeedbeef);
            narrow.upper_product_halved(own.context(), part.data(), 1, la + lb, a.data(), la, b.data(), lb);
            EXPECT_TRUE(std::equal(part.begin(), part.end() - 1, product.begin() + 1));
            EXPECT_EQ(part.back(), 0xfeedbeef);
        }
    }
    EXPECT_TRUE(own.guards_intact());
}

// Columns, rows, blocks of coefficients and their carries split among tasks: the same words.
TEST(Ntt64Product, TasksDoNotChangeIt) {
    qmp::PushPoolParallelizer pool;
    TwiddledContext own(150000, scratch_for(150000));
    Random random(24);
    for (std::uint64_t n : {20000, 60000, 150000}) {
        for (Pattern pattern : {Pattern::runs, Pattern::ones}) {
            const Words a = make_words(random, n / 2, pattern), b = make_words(random, n - n / 2, pattern);
            const Words expected = product_of(own.context(), a, b);
            for (std::uint64_t tasks : {2, 3, 8, 1000}) {
                const MultiplyContext context = own.context(ParallelContext{tasks, &pool});
                ASSERT_EQ(product_of(context, a, b), expected) << tasks << " tasks";
                ASSERT_EQ(halved_product_of(context, a, b, 0, n), expected) << tasks << " tasks";
            }
        }
    }
    EXPECT_TRUE(own.guards_intact());
}

TEST(Ntt64Product, LevelsAgree) {
    TwiddledContext own(40000, scratch_for(40000));
    Random random(25);
    for (std::uint64_t n : {5000, 15001, 40000}) {
        const Words a = make_words(random, n - n / 3), b = make_words(random, n / 3, Pattern::runs);
        const Words expected = product_of(own.context(), a, b);
        for (std::size_t i = 0; i < qmp::instruction_level_count; ++i) {
            const auto level = static_cast<qmp::InstructionLevel>(i);
            if (!qmp::supported(level)) continue;
            qmp::force_level(qmp::name_of(level));
            EXPECT_EQ(product_of(own.context(), a, b), expected) << qmp::name_of(level);
        }
        qmp::force_level("");
    }
}

TEST(Ntt64Algorithm, Properties) {
    const qmp::Algorithm& algorithms64 = qmp::ntt64::algorithm64();
    const qmp::Algorithm& algorithms32 = qmp::ntt64::algorithm32();
    for (const qmp::Algorithm* algorithm : {&algorithms64, &algorithms32}) {
        EXPECT_EQ(algorithm->max_bits, 0x3800000000000000u);
        EXPECT_STREQ(algorithm->key, "N64");
        EXPECT_STREQ(algorithm->name, "64-bit NTT");
        EXPECT_STREQ(algorithm->version, "NTT64");
        EXPECT_STREQ(algorithm->description, "64-bit NTT");
    }
    EXPECT_EQ(qmp::find_algorithm("N64", qmp::WordKind::basic64), &algorithms64);
    EXPECT_EQ(qmp::find_algorithm("N64", qmp::WordKind::basic32), &algorithms32);
}

TEST(Ntt64Algorithm, ScratchNeverShrinks) {
    std::uint64_t whole = 0, half = 0;
    for (std::uint64_t n = 1; n < std::uint64_t{0x3800000000000000} / 64; n += n / 50 + 1) {
        EXPECT_LE(whole, n64().psize(n, 1)) << n;
        EXPECT_LE(half, n64().psize_halved(n, 1)) << n;
        whole = n64().psize(n, 1);
        half = n64().psize_halved(n, 1);
        EXPECT_EQ(whole, qmp::ntt64::algorithm32().psize(2 * n, 1));
    }
    EXPECT_THROW(n64().psize(0x3800000000000000 / 64 + 1, 1), qmp::LimitExceededException);
}

// The scratch of a size's own operations, and one word less.
TEST(Ntt64Algorithm, ScratchOneShort) {
    Random random(26);
    for (std::uint64_t n : {10, 3000, 9000}) {
        const Words a = make_words(random, n / 2), b = make_words(random, n - n / 2);
        qmp::TransformParametersBox box;
        const qmp::TransformParameters& params = n64().construct(box, n);
        const std::uint64_t needed = 2 * params.operand_words + params.scratch_words;
        EXPECT_LE(8 * needed, n64().psize(n, 1));
        TwiddledContext own(n, 8 * needed);
        product_of(own.context(), a, b);
        EXPECT_TRUE(own.guards_intact());
        MultiplyContext context = own.context();
        context.scratch_words -= 1;
        Words product(n);
        try {
            n64().multiply(context, product.data(), a.data(), n / 2, b.data(), n - n / 2);
            FAIL();
        } catch (const qmp::BufferTooSmallException& e) {
            EXPECT_EQ(e.function(), "Ntt64Algorithm::multiply()");
            EXPECT_EQ(e.buffer_size(), needed - 1);
            EXPECT_EQ(e.required_size(), needed);
        }
    }
}

TEST(Ntt64Algorithm, TwiddlesTooShort) {
    TwiddledContext own(100, n64().psize(200, 1));
    const Words a(101, 1);
    Words product(202);
    n64().multiply(own.context(), product.data(), a.data(), 50, a.data(), 50);
    try {
        n64().multiply(own.context(), product.data(), a.data(), 51, a.data(), 50);
        FAIL();
    } catch (const qmp::LimitExceededException& e) {
        EXPECT_EQ(e.function(), "Ntt64TransformParameters::require_twiddles()");
        EXPECT_EQ(e.limit(), 100u);
        EXPECT_EQ(e.attempted(), 101u);
    }
    MultiplyContext none = own.context();
    none.twiddles = nullptr;
    EXPECT_THROW(n64().multiply(none, product.data(), a.data(), 1, a.data(), 1), qmp::LimitExceededException);
}

}  // namespace
