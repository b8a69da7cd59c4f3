// The vector transform: products of every size that a test can hold, by several routes.
#include <gtest/gtest.h>
#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "errors/convolution_exceptions.h"
#include "errors/exception.h"
#include "multiply/fft/fft_algorithm.h"
#include "multiply/vst/vst_algorithm.h"
#include "multiply/vst/vst_params.h"
#include "multiply/vst/vst_transform_parameters.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/fatal.h"
#include "support/levels.h"
#include "support/random_words.h"
#include "support/twiddled_context.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::Pattern;
using kelvara_test::Random;
using kelvara_test::TwiddledContext;
using qmp::LimitRow;
using qmp::MultiplyContext;
using qmp::ParallelContext;
using qmp::SizeParams;
using qmp::Word;
using qmp::vst::VstTransformParameters;
using Words = std::vector<Word>;

constexpr Word ones = ~Word{0};
constexpr std::uint64_t fft_limit = 10240;
// The shortest product for which a twiddle set has this transform's tables.
constexpr std::uint64_t shortest = fft_limit + 1;

const qmp::Algorithm64& vst() {
    return qmp::vst::algorithm64();
}

// All listed sizes with capacities of up to so many words.
std::vector<SizeParams> sizes_up_to(std::uint64_t words) {
    std::vector<SizeParams> sizes;
    for (const auto& list : {qmp::vst::limit_tables.specialised, qmp::vst::limit_tables.standard}) {
        for (const LimitRow& row : list) {
            const SizeParams size = qmp::vst::limit_tables.size(row);
            if (size.capacity_bits <= 64 * words) sizes.push_back(size);
        }
    }
    return sizes;
}

std::uint64_t scratch_bytes(const SizeParams& size, std::uint64_t tasks) {
    const qmp::vst::Plan plan(size);
    return 8 * (2 * plan.operand_words() + plan.scratch_words(tasks));
}

// (2^(64 la) - 1) * (2^(64 lb) - 1) = 2^(64 (la + lb)) - 2^(64 la) - 2^(64 lb) + 1, la >= lb.
void expect_product_of_ones(const Words& product, std::uint64_t la, std::uint64_t lb) {
    for (std::uint64_t i = 0; i < la + lb; ++i) {
        const Word expected = i == 0 ? 1 : i < lb ? 0 : i == la ? ones - 1 : ones;
        ASSERT_EQ(product[i], expected) << "word " << i << " of " << la << " + " << lb;
    }
}

Words product_of(const MultiplyContext& context, const Words& a, const Words& b) {
    GuardedWords product(a.size() + b.size());
    vst().multiply(context, product.data(), a.data(), a.size(), b.data(), b.size());
    EXPECT_TRUE(product.guards_intact());
    return product.value();
}

// The same by the floating-point transform, in a context that has its tables.
Words fft_product_of(const MultiplyContext& context, const Words& a, const Words& b) {
    Words product(a.size() + b.size());
    qmp::fft::algorithm64().multiply(context, product.data(), a.data(), a.size(), b.data(), b.size());
    return product;
}

class VstProduct : public kelvara_test::LevelTest {};
INSTANTIATE_EVERY_LEVEL(VstProduct);

TEST_P(VstProduct, OnesAtTheLargestSizeOfEveryRow) {
    constexpr std::uint64_t most = 30000;
    TwiddledContext own(most, scratch_bytes(qmp::vst::vst_params(64 * most), 1),
                        ParallelContext::sequential(), fft_limit);
    for (const SizeParams& size : sizes_up_to(most)) {
        const VstTransformParameters parameters(size);
        const std::uint64_t n = parameters.convolution_words();
        const Words a(n - n / 3, ones), b(n / 3, ones);
        GuardedWords product(n);
        parameters.product("test", own.context(), product.data(), 0, 8 * n, a.data(), 8 * a.size(), b.data(),
                           8 * b.size());
        expect_product_of_ones(product.value(), a.size(), b.size());
        const Words half(n / 2, ones);
        parameters.product("test", own.context(), product.data(), 0, 8 * (n / 2 * 2), half.data(),
                           8 * half.size(), half.data(), 8 * half.size());
        Words square = product.value();
        square.resize(n / 2 * 2);
        expect_product_of_ones(square, n / 2, n / 2);
        ASSERT_TRUE(product.guards_intact()) << size.primes << " " << size.multiplier << " " << size.exponent;
    }
    EXPECT_TRUE(own.guards_intact());
}

TEST_P(VstProduct, EveryPatternAgainstTheFloatingPointTransform) {
    constexpr std::uint64_t most = 14000;
    TwiddledContext own(std::max(most, shortest),
                        std::max(vst().psize(most, 1), qmp::fft::algorithm64().psize(most, 1)));
    Random random(20);
    for (std::uint64_t n : {2000, 2304, 2305, 5000, 9999, 10241, 12345, 14000}) {
        for (Pattern pattern : kelvara_test::all_patterns) {
            const std::uint64_t lb = random.between(1, n - 1);
            const Words a = make_words(random, n - lb, pattern), b = make_words(random, lb, pattern);
            ASSERT_EQ(product_of(own.context(), a, b), fft_product_of(own.context(), a, b)) << n << " words";
        }
    }
    EXPECT_TRUE(own.guards_intact());
}

TEST_P(VstProduct, UpperProducts) {
    constexpr std::uint64_t most = 6000;
    TwiddledContext own(std::max(most, shortest),
                        std::max(vst().psize(most, 1), qmp::fft::algorithm64().psize(most, 1)));
    Random random(21);
    for (int round = 0; round < 12; ++round) {
        const std::uint64_t la = random.between(1, most / 2), lb = random.between(1, most / 2);
        const Words a = make_words(random, la, Pattern::runs), b = make_words(random, lb, Pattern::runs);
        const Words whole = fft_product_of(own.context(), a, b);
        const std::uint64_t end = random.between(1, la + lb), skip = random.between(0, end - 1);
        GuardedWords part(end - skip);
        vst().upper_product(own.context(), part.data(), skip, end, a.data(), la, b.data(), lb);
        ASSERT_EQ(part.value(), Words(whole.begin() + skip, whole.begin() + end)) << skip << " " << end;
        ASSERT_TRUE(part.guards_intact());

        const Words square = fft_product_of(own.context(), a, a);
        const std::uint64_t square_end = random.between(1, 2 * la);
        const std::uint64_t square_skip = random.between(0, square_end - 1);
        GuardedWords square_part(square_end - square_skip);
        vst().upper_square(own.context(), square_part.data(), square_skip, square_end, a.data(), la);
        ASSERT_EQ(square_part.value(), Words(square.begin() + square_skip, square.begin() + square_end));
        ASSERT_TRUE(square_part.guards_intact());
    }
    EXPECT_TRUE(own.guards_intact());
}

// From two convolutions of half the length: exact words, in less scratch.
TEST_P(VstProduct, HalvedUpperProducts) {
    constexpr std::uint64_t most = 6000;
    TwiddledContext whole_context(shortest, qmp::fft::algorithm64().psize(most, 1));
    TwiddledContext own(shortest, vst().psize_halved(most, 1));
    EXPECT_LT(vst().psize_halved(most, 1), vst().psize(most, 1));
    Random random(28);
    for (int round = 0; round < 12; ++round) {
        const std::uint64_t la = round == 0 ? most - 10 : random.between(1, most / 2);
        const std::uint64_t lb = round == 0 ? 10 : random.between(1, most / 2);
        const Pattern pattern = kelvara_test::all_patterns[round % 5];
        const Words a = make_words(random, la, pattern), b = make_words(random, lb, pattern);
        const Words whole = fft_product_of(whole_context.context(), a, b);
        const std::uint64_t end = random.between(1, la + lb), skip = random.between(0, end - 1);
        GuardedWords part(end - skip);
        vst().upper_product_halved(own.context(), part.data(), skip, end, a.data(), la, b.data(), lb);
        ASSERT_EQ(part.value(), Words(whole.begin() + skip, whole.begin() + end)) << la << " x " << lb;
        ASSERT_TRUE(part.guards_intact());
    }
    EXPECT_TRUE(own.guards_intact());
}

TEST(VstLongProduct, HalvedByManyTasks) {
    qmp::PushPoolParallelizer pool;
    constexpr std::uint64_t n = 300000;
    TwiddledContext own(n, std::max(vst().psize(n, 1), vst().psize_halved(n, 8)),
                        ParallelContext::sequential(), fft_limit);
    Random random(29);
    const Words a = make_words(random, n / 2, Pattern::runs), b = make_words(random, n - n / 2);
    const Words expected = product_of(own.context(), a, b);
    for (std::uint64_t tasks : {1, 8}) {
        GuardedWords product(n);
        vst().upper_product_halved(own.context(ParallelContext{tasks, &pool}), product.data(), 0, n, a.data(),
                                   a.size(), b.data(), b.size());
        EXPECT_TRUE(product.value() == expected) << tasks << " tasks";
        EXPECT_TRUE(product.guards_intact());
    }
}

// Every window near the edges of a row of the transform's matrix, where pieces meet.
TEST(VstWindows, EveryEdge) {
    const VstTransformParameters parameters(qmp::vst::limit_tables.size(7, 1, 12));
    const std::uint64_t n = parameters.convolution_words();
    TwiddledContext own(
        shortest, std::max(scratch_bytes(parameters.plan().size, 1), qmp::fft::algorithm64().psize(n, 1)));
    Random random(22);
    const Words a = make_words(random, n / 2, Pattern::runs), b = make_words(random, n - n / 2);
    const Words whole = fft_product_of(own.context(), a, b);
    const std::uint64_t row = parameters.plan().columns * parameters.plan().point_bytes / 8;
    for (std::uint64_t middle : {row, 2 * row, n - 40}) {
        for (std::uint64_t from = middle - 20; from <= middle + 20; from += 3) {
            for (std::uint64_t count : {1, 2, 17, 40}) {
                const std::uint64_t to = std::min(from + count, n);
                GuardedWords part(to - from);
                parameters.product("test", own.context(), part.data(), 8 * from, 8 * to, a.data(),
                                   8 * a.size(), b.data(), 8 * b.size());
                ASSERT_EQ(part.value(), Words(whole.begin() + from, whole.begin() + to)) << from << " " << to;
                ASSERT_TRUE(part.guards_intact());
            }
        }
    }
}

// Modulo R^n - 1 and R^n + 1, from transformed operands.
// The listed sizes with capacities of more than `above` words, and up to `most`.
void expect_wrapped_products(std::uint64_t above, std::uint64_t most) {
    TwiddledContext own(std::max(2 * most, shortest),
                        std::max(scratch_bytes(qmp::vst::vst_params(64 * most), 1),
                                 qmp::fft::algorithm64().psize(2 * most, 1)));
    Random random(23);
    for (const SizeParams& size : sizes_up_to(most)) {
        const VstTransformParameters parameters(size);
        const std::uint64_t n = parameters.convolution_words();
        if (size.capacity_bits <= 64 * above) continue;
        for (Pattern pattern : {Pattern::uniform, Pattern::ones, Pattern::runs}) {
            const Words a = make_words(random, n, pattern), b = make_words(random, n, pattern);
            const Words whole = fft_product_of(own.context(), a, b);
            GuardedWords x(parameters.operand_words), y(parameters.operand_words), result(n);

            parameters.forward(own.context(), x.data(), a.data(), n);
            parameters.forward_for_square(own.context(), y.data(), b.data(), n);
            parameters.inverse_multiply(own.context(), x.data(), y.data(), result.data(), 0, n);
            Words cyclic(whole.begin(), whole.begin() + n);
            Word carry = 0;
            for (int round = 0; round < 2; ++round) {
                for (std::uint64_t i = 0; i < n; ++i) {
                    const Word addend = round == 0 ? whole[n + i] : 0;
                    const Word sum = cyclic[i] + addend;
                    const Word total = sum + carry;
                    carry = (sum < addend ? 1 : 0) + (total < sum ? 1 : 0);
                    cyclic[i] = total;
                }
            }
            ASSERT_EQ(result.value(), cyclic);
            ASSERT_TRUE(x.guards_intact() && y.guards_intact() && result.guards_intact());

            parameters.forward_negacyclic(own.context(), x.data(), a.data(), n);
            parameters.forward_negacyclic(own.context(), y.data(), b.data(), n);
            const bool minus_one =
                parameters.inverse_multiply_negacyclic(own.context(), x.data(), y.data(), result.data());
            Words negacyclic(whole.begin(), whole.begin() + n);
            Word borrow = 0;
            for (std::uint64_t i = 0; i < n; ++i) {
                const Word subtrahend = whole[n + i];
                const Word difference = negacyclic[i] - subtrahend;
                const Word rest = difference - borrow;
                borrow = (difference > negacyclic[i] ? 1 : 0) + (rest > difference ? 1 : 0);
                negacyclic[i] = rest;
            }
            // R^n is -1.
            for (std::uint64_t i = 0; i < n && borrow != 0; ++i) borrow = ++negacyclic[i] == 0 ? 1 : 0;
            ASSERT_EQ(result.value(), negacyclic);
            ASSERT_EQ(minus_one, borrow != 0);
        }
    }
}

TEST_P(VstProduct, WrapsAround) {
    expect_wrapped_products(0, 3000);
}

TEST_P(VstProduct, WrapsAroundWhenLarge) {
    expect_wrapped_products(3000, 9000);
}

// Residues of R^n + 1 that n words do not hold.
TEST(VstNegacyclic, MinusOne) {
    const VstTransformParameters parameters(qmp::vst::limit_tables.size(6, 1, 10));
    const std::uint64_t n = parameters.convolution_words();
    TwiddledContext own(shortest, scratch_bytes(parameters.plan().size, 1));
    GuardedWords x(parameters.operand_words), y(parameters.operand_words), result(n);
    // R^(n/2) squared is -1.
    Words a(n, 0);
    a[n / 2] = 1;
    parameters.forward_negacyclic(own.context(), x.data(), a.data(), n);
    EXPECT_TRUE(parameters.inverse_multiply_negacyclic(own.context(), x.data(), x.data(), result.data()));
    EXPECT_EQ(result.value(), Words(n, 0));
    // Twice that: -2, all ones in the lowest word but for the last bit.
    Words b = a;
    b[n / 2] = 2;
    parameters.forward_negacyclic(own.context(), x.data(), a.data(), n);
    parameters.forward_negacyclic(own.context(), y.data(), b.data(), n);
    EXPECT_FALSE(parameters.inverse_multiply_negacyclic(own.context(), x.data(), y.data(), result.data()));
    EXPECT_EQ(result.value(), Words(n, ones));
    // 0
    parameters.forward_negacyclic(own.context(), x.data(), a.data(), 0);
    EXPECT_FALSE(parameters.inverse_multiply_negacyclic(own.context(), x.data(), y.data(), result.data()));
    EXPECT_EQ(result.value(), Words(n, 0));
}

// 32-bit words are the same bytes; odd counts end in the middle of a 64-bit word.
TEST(VstWords, WordsOf32Bits) {
    constexpr std::uint64_t most = 4000;
    TwiddledContext own(std::max(most, shortest),
                        std::max(vst().psize(most, 1), qmp::fft::algorithm64().psize(most, 1)));
    Random random(24);
    for (std::uint64_t la : {1001, 3000}) {
        for (std::uint64_t lb : {1, 777, 2001}) {
            Words wide_a = make_words(random, (la + 1) / 2), wide_b = make_words(random, (lb + 1) / 2);
            std::vector<std::uint32_t> a(la), b(lb), product(la + lb + 2, 0xfeedbeef);
            std::memcpy(a.data(), wide_a.data(), 4 * la);
            std::memcpy(b.data(), wide_b.data(), 4 * lb);
            std::fill(wide_a.begin(), wide_a.end(), 0);
            std::fill(wide_b.begin(), wide_b.end(), 0);
            std::memcpy(wide_a.data(), a.data(), 4 * la);
            std::memcpy(wide_b.data(), b.data(), 4 * lb);
            qmp::vst::algorithm32().multiply(own.context(), product.data(), a.data(), la, b.data(), lb);
            const Words expected = fft_product_of(own.context(), wide_a, wide_b);
            ASSERT_EQ(std::memcmp(product.data(), expected.data(), 4 * (la + lb)), 0) << la << " x " << lb;
            EXPECT_EQ(product[la + lb], 0xfeedbeef);
        }
    }
}

TEST(VstLongProduct, TasksAndLevelsDoNotChangeIt) {
    qmp::PushPoolParallelizer pool;
    constexpr std::uint64_t most = 400000;
    TwiddledContext own(most, vst().psize(most, 64), ParallelContext::sequential(), fft_limit);
    Random random(25);
    for (std::uint64_t n : {10241, 60000, 400000}) {
        const Words a = make_words(random, n / 2, Pattern::runs), b = make_words(random, n - n / 2);
        const Words expected = product_of(own.context(), a, b);
        for (std::uint64_t tasks : {2, 3, 8, 64}) {
            ASSERT_EQ(product_of(own.context(ParallelContext{tasks, &pool}), a, b), expected)
                << tasks << " tasks";
        }
        if (n > 60000) continue;
        kelvara_test::for_every_level(
            [&](qmp::InstructionLevel) { EXPECT_EQ(product_of(own.context(), a, b), expected); });
    }
    EXPECT_TRUE(own.guards_intact());
}

#ifdef KELVARA_HAVE_GMP
// Long rows, cut into leaves.
TEST(VstLongProduct, AgainstGmp) {
    qmp::PushPoolParallelizer pool;
    const ParallelContext parallel{4, &pool};
    constexpr std::uint64_t most = 3000000;
    TwiddledContext own(most, vst().psize(most, 4), parallel, fft_limit);
    Random random(26);
    for (std::uint64_t n : {700000, 1570000, 1960000, 3000000}) {
        const std::uint64_t lb = n / 3, la = n - lb;
        const Words a = make_words(random, la, Pattern::runs), b = make_words(random, lb);
        Words expected(n);
        mpn_mul(reinterpret_cast<mp_limb_t*>(expected.data()), reinterpret_cast<const mp_limb_t*>(a.data()),
                static_cast<mp_size_t>(la), reinterpret_cast<const mp_limb_t*>(b.data()),
                static_cast<mp_size_t>(lb));
        ASSERT_TRUE(product_of(own.context(parallel), a, b) == expected) << n;
    }
}
#endif

TEST(VstAlgorithm, Properties) {
    const qmp::Algorithm& algorithms64 = qmp::vst::algorithm64();
    const qmp::Algorithm& algorithms32 = qmp::vst::algorithm32();
    for (const qmp::Algorithm* algorithm : {&algorithms64, &algorithms32}) {
        EXPECT_EQ(algorithm->max_bits, 0x2400000000000u);
        EXPECT_STREQ(algorithm->key, "VST");
        EXPECT_STREQ(algorithm->name, "VST Algorithm");
        EXPECT_STREQ(algorithm->version, "VSTv2");
        EXPECT_STREQ(algorithm->description, "VST Algorithm");
    }
}

TEST(VstAlgorithm, ScratchNeverShrinks) {
    for (std::uint64_t tasks : {1, 2, 16, 1000}) {
        std::uint64_t before = 0;
        for (double words = 1; words < 5.1e12; words *= 1.3) {
            const std::uint64_t bytes = vst().psize(static_cast<std::uint64_t>(words), tasks);
            ASSERT_GE(bytes, before) << words;
            before = bytes;
        }
    }
}

TEST(VstAlgorithm, ExactlyTheScratchItAsksFor) {
    constexpr std::uint64_t n = 12000;
    const qmp::vst::Plan plan(qmp::vst::vst_params(64 * n));
    const std::uint64_t needed = 2 * plan.operand_words() + plan.scratch_words(1);
    const Words a(n / 2, ones), b(n / 2, ones - 5);
    TwiddledContext enough(n, 8 * needed), less(n, 8 * needed - 8);
    product_of(enough.context(), a, b);
    EXPECT_TRUE(enough.guards_intact());
    EXPECT_THROW(product_of(less.context(), a, b), qmp::BufferTooSmallException);
    EXPECT_THROW(product_of(less.context().with_tasks(8), a, b), qmp::BufferTooSmallException);
}

TEST(VstAlgorithm, TwiddleTablesTooSmall) {
    constexpr std::uint64_t n = 400000;
    TwiddledContext own(11000, vst().psize(n, 1));
    const Words a(n / 2, ones);
    try {
        product_of(own.context(), a, a);
        ADD_FAILURE();
    } catch (const qmp::LimitExceededException& e) {
        EXPECT_EQ(e.function(), "VstAlgorithm::multiply()");
    }
    const MultiplyContext none(ParallelContext::sequential(), nullptr, own.context().scratch,
                               own.context().scratch_words);
    EXPECT_THROW(product_of(none, a, a), qmp::LimitExceededException);
}

TEST(VstAlgorithm, OperandsMadeByOtherParameters) {
    const VstTransformParameters a(qmp::vst::limit_tables.size(6, 1, 10)),
        same(qmp::vst::limit_tables.size(6, 1, 10)), other(qmp::vst::limit_tables.size(6, 1, 11)),
        more_primes(qmp::vst::limit_tables.size(7, 1, 10));
    EXPECT_TRUE(a.compatible_with(same));
    EXPECT_FALSE(a.compatible_with(other));
    EXPECT_FALSE(a.compatible_with(more_primes));
}

// Any wrong residue makes a coefficient that operands cannot make.
TEST(VstAlgorithm, WrongResiduesAreSeen) {
    const VstTransformParameters parameters(qmp::vst::limit_tables.size(8, 3, 9));
    const std::uint64_t n = parameters.convolution_words();
    TwiddledContext own(shortest, scratch_bytes(parameters.plan().size, 1));
    Random random(27);
    const Words a = make_words(random, n / 2);
    GuardedWords x(parameters.operand_words), y(parameters.operand_words), result(n);
    for (std::uint32_t prime = 0; prime < parameters.plan().primes(); ++prime) {
        parameters.forward(own.context(), x.data(), a.data(), a.size());
        parameters.forward(own.context(), y.data(), a.data(), a.size());
        double value;
        Word& victim = x.data()[prime * parameters.plan().prime_stride + 77];
        std::memcpy(&value, &victim, sizeof value);
        value += 1;
        std::memcpy(&victim, &value, sizeof value);
        try {
            parameters.inverse_multiply(own.context(), x.data(), y.data(), result.data(), 0, n);
            ADD_FAILURE() << prime;
        } catch (const qmp::ConvolutionFailedException& e) {
            EXPECT_EQ(e.function(), "VstTransformParameters::inverse_multiply()");
            EXPECT_EQ(e.limit(), std::uint64_t{1} << 40);
            EXPECT_GT(e.found(), e.limit());
        }
    }
}

#if GTEST_HAS_DEATH_TEST
TEST(VstAlgorithmDeathTest, OperandsAndWindowsBeyondTheConvolution) {
    const VstTransformParameters parameters(qmp::vst::limit_tables.size(6, 1, 10));
    const std::uint64_t n = parameters.convolution_words();
    TwiddledContext own(shortest, scratch_bytes(parameters.plan().size, 1));
    const Words a(n + 1, 1);
    GuardedWords x(parameters.operand_words), result(n + 1);
    EXPECT_CRASH(parameters.forward(own.context(), x.data(), a.data(), n + 1),
                 "Invalid Function Parameters:");
    EXPECT_CRASH(parameters.inverse_multiply(own.context(), x.data(), x.data(), result.data(), 0, n + 1),
                 "Invalid Function Parameters:");
}
#endif

}  // namespace
