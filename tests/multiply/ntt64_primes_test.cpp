// The primes of the 64-bit transform, against what its numerics ask of them.
#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <span>
#include <vector>

#include "multiply/ntt64/ntt64_params.h"
#include "multiply/ntt64/prime_table.h"
#include "multiply/ntt64/size_tables.h"
#include "multiply/word.h"

namespace {

using qmp::DoubleWord;
using qmp::SizeParams;
using qmp::Word;
using qmp::ntt64::PrimeSet;

Word power(Word a, Word exponent, Word p) {
    Word result = 1;
    for (; exponent != 0; exponent >>= 1) {
        if (exponent & 1) result = static_cast<Word>(static_cast<DoubleWord>(result) * a % p);
        a = static_cast<Word>(static_cast<DoubleWord>(a) * a % p);
    }
    return result;
}

std::vector<Word> prime_factors(Word n) {
    std::vector<Word> factors;
    for (Word q = 2; q * q <= n; ++q) {
        if (n % q != 0) continue;
        factors.push_back(q);
        while (n % q == 0) n /= q;
    }
    if (n > 1) factors.push_back(n);
    return factors;
}

// g has order p - 1, which no composite number allows: p is prime, and g a primitive root.
bool is_primitive_root(Word g, Word p) {
    if (power(g, p - 1, p) != 1) return false;
    for (Word q : prime_factors(p - 1)) {
        if (power(g, (p - 1) / q, p) == 1) return false;
    }
    return true;
}

// The bits of a product, whole and as words.
std::vector<Word> product_of(const PrimeSet& set, std::uint32_t count) {
    std::vector<Word> words{1};
    for (std::uint32_t i = 0; i < count; ++i) {
        Word carry = 0;
        for (Word& word : words) {
            const DoubleWord t = static_cast<DoubleWord>(word) * set.primes[i].value + carry;
            word = qmp::low_word(t);
            carry = qmp::high_word(t);
        }
        words.push_back(carry);
    }
    return words;
}

template <typename Visit>
void for_all_sets(Visit visit) {
    for (std::uint32_t primes = 5; primes <= 9; ++primes) {
        for (std::uint32_t multiplier : {1, 3, 5, 7}) {
            visit(primes, multiplier, qmp::ntt64::prime_set(primes, multiplier));
        }
    }
}

TEST(Ntt64Primes, ArePrimesWithTheirRoots) {
    for_all_sets([](std::uint32_t primes, std::uint32_t multiplier, const PrimeSet& set) {
        std::set<Word> different;
        for (std::uint32_t i = 0; i < primes; ++i) {
            const Word p = set.primes[i].value;
            EXPECT_GT(p, Word{1} << 62);
            EXPECT_LT(p, Word{1} << 63);
            EXPECT_EQ((p - 1) % (Word{multiplier} << set.exponent), 0u);
            EXPECT_TRUE(is_primitive_root(set.primes[i].primitive_root, p)) << std::hex << p;
            different.insert(p);
        }
        EXPECT_EQ(different.size(), primes);
        for (std::uint32_t i = primes; i < set.primes.size(); ++i) EXPECT_EQ(set.primes[i].value, 0u);
    });
}

// M > 2 * m * 2^e * 2^(64 (primes - 1)): M's top word is more than 2 m 2^e.
TEST(Ntt64Primes, TheirProductHoldsEverySignedCoefficient) {
    for_all_sets([](std::uint32_t primes, std::uint32_t multiplier, const PrimeSet& set) {
        const std::vector<Word> product = product_of(set, primes);
        EXPECT_EQ(product[primes], 0u);
        const Word bound = 2 * (Word{multiplier} << set.exponent);
        EXPECT_GT(product[primes - 1], bound);
        // Rounding in double precision does not come near the half.
        const double margin = static_cast<double>(product[primes - 1]) / static_cast<double>(bound) - 1;
        EXPECT_GT(margin, 0.33) << primes << " primes, multiplier " << multiplier;
    });
}

TEST(Ntt64Primes, HaveRootsForEveryListedSize) {
    const auto check = [](const SizeParams& size) {
        EXPECT_LE(size.exponent, qmp::ntt64::prime_set(size.primes, size.multiplier).exponent)
            << size.primes << " " << size.multiplier;
    };
    const std::uint64_t all = ~std::uint64_t{0};
    qmp::ntt64::limit_tables.visit_rows_up_to(qmp::ntt64::standard_rows, all, check);
    qmp::ntt64::limit_tables.visit_rows_up_to(qmp::ntt64::specialised_rows, all, check);
}

}  // namespace
