// Checks that hold for every multiplication algorithm, given its objects.
#pragma once

#include <gtest/gtest.h>
#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <vector>

#include "errors/exception.h"
#include "multiply/algorithm.h"
#include "multiply/fft/fft_algorithm.h"
#include "support/random_words.h"
#include "support/twiddled_context.h"
#include "support/words_reference.h"

namespace kelvara_test {

constexpr qmp::Word all_ones = ~qmp::Word{0};

// (2^(64 la) - 1) * (2^(64 lb) - 1) = 2^(64 (la + lb)) - 2^(64 la) - 2^(64 lb) + 1.
inline std::vector<qmp::Word> product_of_ones(std::uint64_t la, std::uint64_t lb) {
    std::vector<qmp::Word> product(la + lb, all_ones);
    std::fill(product.begin(), product.begin() + static_cast<std::ptrdiff_t>(std::min(la, lb)), 0);
    product[std::max(la, lb)] = all_ones - 1;
    product[0] = 1;
    return product;
}

inline std::vector<qmp::Word> product_by(const qmp::Algorithm64& algorithm,
                                         const qmp::MultiplyContext& context, const std::vector<qmp::Word>& a,
                                         const std::vector<qmp::Word>& b) {
    GuardedWords product(a.size() + b.size());
    algorithm.multiply(context, product.data(), a.data(), a.size(), b.data(), b.size());
    EXPECT_TRUE(product.guards_intact());
    return product.value();
}

// By GMP where it is there, by the schoolbook method otherwise.
inline std::vector<qmp::Word> oracle_product(const std::vector<qmp::Word>& a,
                                             const std::vector<qmp::Word>& b) {
#ifdef KELVARA_HAVE_GMP
    std::vector<qmp::Word> product(a.size() + b.size());
    const auto& longer = a.size() < b.size() ? b : a;
    const auto& shorter = a.size() < b.size() ? a : b;
    mpn_mul(reinterpret_cast<mp_limb_t*>(product.data()), reinterpret_cast<const mp_limb_t*>(longer.data()),
            static_cast<mp_size_t>(longer.size()), reinterpret_cast<const mp_limb_t*>(shorter.data()),
            static_cast<mp_size_t>(shorter.size()));
    return product;
#else
    return reference_product(a, b);
#endif
}

// The longest product of a size with this capacity in words, its square and an uneven one, of all-ones words:
// the largest coefficients there are.
inline void expect_products_of_ones(const qmp::Algorithm64& algorithm, const qmp::MultiplyContext& context,
                                    std::uint64_t n) {
    using Words = std::vector<qmp::Word>;
    for (std::uint64_t lb : {n / 2, (n + 2) / 3}) {
        const Words a(n - lb, all_ones), b(lb, all_ones);
        ASSERT_EQ(product_by(algorithm, context, a, b), product_of_ones(n - lb, lb)) << n << " words";
    }
    const Words a(n / 2, all_ones);
    ASSERT_EQ(product_by(algorithm, context, a, a), product_of_ones(n / 2, n / 2)) << n << " words";
}

// Every pattern, against the oracle and the floating-point convolutions; n up to 1572864 words.
inline void expect_products(const qmp::Algorithm64& algorithm, const qmp::MultiplyContext& context,
                            Random& random, std::uint64_t n) {
    for (Pattern pattern : all_patterns) {
        const std::uint64_t lb = random.between(1, n - 1);
        const auto a = make_words(random, n - lb, pattern), b = make_words(random, lb, Pattern::uniform);
        const auto product = product_by(algorithm, context, a, b);
        ASSERT_EQ(product, oracle_product(a, b)) << n - lb << " x " << lb;
        ASSERT_EQ(product, product_by(qmp::fft::algorithm64(), context, a, b)) << n - lb << " x " << lb;
    }
}

inline void expect_upper_products(const qmp::Algorithm64& algorithm, const qmp::MultiplyContext& context,
                                  Random& random, std::uint64_t longest) {
    using Words = std::vector<qmp::Word>;
    const auto part_of = [](const Words& whole, std::uint64_t skip, std::uint64_t end) {
        return Words(whole.begin() + static_cast<std::ptrdiff_t>(skip),
                     whole.begin() + static_cast<std::ptrdiff_t>(end));
    };
    for (int round = 0; round < 12; ++round) {
        const std::uint64_t la = random.between(1, longest / 2), lb = random.between(1, longest / 2);
        const Words a = make_words(random, la, Pattern::runs), b = make_words(random, lb, Pattern::runs);
        const std::uint64_t end = random.between(1, la + lb), skip = random.between(0, end - 1);
        const Words expected = part_of(oracle_product(a, b), skip, end);
        GuardedWords part(end - skip), halved(end - skip);
        algorithm.upper_product(context, part.data(), skip, end, a.data(), la, b.data(), lb);
        ASSERT_EQ(part.value(), expected);
        ASSERT_TRUE(part.guards_intact());
        algorithm.upper_product_halved(context, halved.data(), skip, end, a.data(), la, b.data(), lb);
        ASSERT_EQ(halved.value(), expected);

        const std::uint64_t stop = random.between(1, 2 * la), start = random.between(0, stop - 1);
        GuardedWords square(stop - start);
        algorithm.upper_square(context, square.data(), start, stop, a.data(), la);
        ASSERT_EQ(square.value(), part_of(oracle_product(a, a), start, stop));
        ASSERT_TRUE(square.guards_intact());
    }
}

// 32-bit words are the same bytes; odd counts end in the middle of a 64-bit word.
inline void expect_narrow_products(const qmp::Algorithm32& algorithm, const qmp::MultiplyContext& context,
                                   Random& random, std::initializer_list<std::uint64_t> lengths) {
    for (std::uint64_t la : lengths) {
        for (std::uint64_t lb : {std::uint64_t{1}, std::uint64_t{6}, la}) {
            std::vector<std::uint32_t> a(la), b(lb), product(la + lb + 2, 0xfeedbeef);
            for (auto& word : a) word = static_cast<std::uint32_t>(random.next());
            for (auto& word : b) word = static_cast<std::uint32_t>(random.next()) | 0xffff0000;
            algorithm.multiply(context, product.data(), a.data(), la, b.data(), lb);
            std::vector<qmp::Word> wide_a((la + 1) / 2, 0), wide_b((lb + 1) / 2, 0);
            std::memcpy(wide_a.data(), a.data(), 4 * la);
            std::memcpy(wide_b.data(), b.data(), 4 * lb);
            const auto expected = oracle_product(wide_a, wide_b);
            ASSERT_EQ(std::memcmp(product.data(), expected.data(), 4 * (la + lb)), 0) << la << " x " << lb;
            ASSERT_EQ(product[la + lb], 0xfeedbeef);

            std::vector<std::uint32_t> part(la + lb, 0xfeedbeef);
            algorithm.upper_product(context, part.data(), 1, la + lb, a.data(), la, b.data(), lb);
            ASSERT_TRUE(std::equal(part.begin(), part.end() - 1, product.begin() + 1));
            ASSERT_EQ(part.back(), 0xfeedbeef);
        }
    }
}

// Operands that fill the whole convolution: what does not fit comes back at the bottom. Both ways of forward
// transform, both inverses, with garbage in all buffers.
inline void expect_cyclic_products(const qmp::TransformParameters& parameters,
                                   const qmp::MultiplyContext& context, Random& random) {
    using Words = std::vector<qmp::Word>;
    const std::uint64_t n = parameters.convolution_words();
    const auto folded = [n](const Words& product) {
        Words sum(product.begin(), product.begin() + static_cast<std::ptrdiff_t>(n));
        qmp::Word carry = 0;
        // All of the upper half, then the carry, which may go round once more.
        for (std::uint64_t i = 0; i < n || (carry != 0 && i < 3 * n); ++i) {
            const qmp::DoubleWord total = qmp::DoubleWord{sum[i % n]} + (i < n ? product[n + i] : 0) + carry;
            sum[i % n] = qmp::low_word(total);
            carry = qmp::high_word(total);
        }
        return sum;
    };
    for (Pattern pattern : {Pattern::uniform, Pattern::runs}) {
        const Words a = make_words(random, n, pattern), b = make_words(random, n, pattern);
        GuardedWords transformed_a(parameters.operand_words), transformed_b(parameters.operand_words);
        GuardedWords product(n);
        parameters.forward(context, transformed_a.data(), a.data(), n);
        parameters.forward(context, transformed_b.data(), b.data(), n);
        const Words kept = transformed_b.value();
        parameters.inverse_multiply(context, transformed_a.data(), transformed_b.data(), product.data(), 0,
                                    n);
        ASSERT_EQ(product.value(), folded(oracle_product(a, b)));
        ASSERT_EQ(transformed_b.value(), kept);

        const std::uint64_t first = n / 3, end = n - n / 5;
        GuardedWords part(end - first);
        parameters.forward_for_square(context, transformed_a.data(), a.data(), n);
        parameters.inverse_square(context, transformed_a.data(), part.data(), first, end);
        const Words square = folded(oracle_product(a, a));
        ASSERT_EQ(part.value(), Words(square.begin() + static_cast<std::ptrdiff_t>(first),
                                      square.begin() + static_cast<std::ptrdiff_t>(end)));
        ASSERT_TRUE(transformed_a.guards_intact() && transformed_b.guards_intact());
        ASSERT_TRUE(product.guards_intact() && part.guards_intact());
    }
}

// What an operation that runs into a limit throws, and that it throws nothing with one word more.
inline void expect_scratch_is_checked(const qmp::Algorithm64& algorithm, const char* function,
                                      std::uint64_t n) {
    const std::uint64_t bytes = algorithm.psize(n, 1);
    TwiddledContext enough(n, bytes);
    const std::vector<qmp::Word> a(n / 2, 3), b(n - n / 2, 5);
    std::vector<qmp::Word> product(n);
    algorithm.multiply(enough.context(), product.data(), a.data(), a.size(), b.data(), b.size());
    EXPECT_TRUE(enough.guards_intact());
    qmp::MultiplyContext context = enough.context();
    context.scratch_words = 100;
    try {
        algorithm.multiply(context, product.data(), a.data(), a.size(), b.data(), b.size());
        FAIL();
    } catch (const qmp::BufferTooSmallException& e) {
        EXPECT_EQ(e.function(), function);
        EXPECT_EQ(e.buffer_size(), 100u);
        EXPECT_LE(e.required_size(), bytes / 8);
        // Exactly what is needed, and one word less.
        context.scratch_words = e.required_size();
        algorithm.multiply(context, product.data(), a.data(), a.size(), b.data(), b.size());
        --context.scratch_words;
        EXPECT_THROW(algorithm.multiply(context, product.data(), a.data(), a.size(), b.data(), b.size()),
                     qmp::BufferTooSmallException);
    }
}

// The context's twiddle set covers a word less than the product.
inline void expect_twiddles_are_checked(const qmp::Algorithm64& algorithm, const char* function,
                                        std::uint64_t n) {
    TwiddledContext own(n - 1, algorithm.psize(n, 1));
    const std::vector<qmp::Word> a(n / 2, 3), b(n - n / 2, 5);
    std::vector<qmp::Word> product(n);
    for (bool without : {false, true}) {
        qmp::MultiplyContext context = own.context();
        if (without) context.twiddles = nullptr;
        try {
            algorithm.multiply(context, product.data(), a.data(), a.size(), b.data(), b.size());
            FAIL();
        } catch (const qmp::LimitExceededException& e) {
            EXPECT_EQ(e.function(), function);
            EXPECT_EQ(e.limit(), without ? 0 : n - 1);
            EXPECT_EQ(e.attempted(), n);
        }
    }
}

}  // namespace kelvara_test
