// The conversions of the vector transform on every level, against plain multi-precision arithmetic.
#include <gtest/gtest.h>

#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "multiply/instruction_levels.h"
#include "multiply/vst/kernels/kernels.h"
#include "multiply/vst/merge_constants.h"
#include "support/random_words.h"

#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

namespace {

using kelvara_test::Random;
using qmp::InstructionLevel;
using namespace qmp::vst;
using Wide = unsigned __int128;

struct Level {
    InstructionLevel level;
    const ConversionKernels* kernels;
};
constexpr Level levels[] = {{InstructionLevel::avx512, &conversion_avx512},
                            {InstructionLevel::avx2, &conversion_avx2},
                            {InstructionLevel::fma4, &conversion_fma4},
                            {InstructionLevel::sse2, &conversion_sse2},
                            {InstructionLevel::scalar, &conversion_scalar}};

// Once per level, number of primes, and length multiplier.
class VstConversion : public testing::TestWithParam<std::tuple<std::size_t, std::uint32_t, std::uint32_t>> {
  protected:
    void SetUp() override {
        if (!qmp::supported(level().level)) {
            GTEST_SKIP() << qmp::name_of(level().level) << " is not supported here";
        }
    }
    const Level& level() const { return levels[std::get<0>(GetParam())]; }
    const ConversionKernels& kernels() const { return *level().kernels; }
    std::uint32_t primes() const { return std::get<1>(GetParam()); }
    std::uint32_t multiplier() const { return std::get<2>(GetParam()); }
    const ConversionConstants& constants() const { return conversion_constants(primes(), multiplier()); }
    std::uint64_t prime(std::uint32_t i) const { return prime_table[multiplier() / 2][i].value; }
    std::uint32_t point_bits() const { return 24 * (primes() - 1); }
    std::uint64_t point_bytes() const { return point_bytes_of(primes()); }
    std::uint32_t largest_bits() const { return 2 * point_bits() + 42; }
};

std::string parameter_name(const testing::TestParamInfo<VstConversion::ParamType>& info) {
    std::string name;
    for (const char* p = qmp::name_of(levels[std::get<0>(info.param)].level); *p; ++p) {
        if (std::isalnum(static_cast<unsigned char>(*p))) name += *p;
    }
    return name + "Primes" + std::to_string(std::get<1>(info.param)) + "Multiplier" +
           std::to_string(std::get<2>(info.param));
}
INSTANTIATE_TEST_SUITE_P(EveryLevel, VstConversion,
                         testing::Combine(testing::Range(std::size_t{0}, std::size(levels)),
                                          testing::Range(fewest_primes, most_primes + 1),
                                          testing::ValuesIn(multipliers)),
                         parameter_name);

// --- Signed numbers, two's complement ---

template <std::size_t N>
using Signed = std::array<std::uint64_t, N>;
using Coefficient = Signed<8>;
using RowSum = Signed<3 * tile_columns + 12>;

template <std::size_t N>
bool negative(const Signed<N>& x) {
    return x[N - 1] >> 63 != 0;
}

// into += x * 2^shift
template <std::size_t N, std::size_t M>
void add_shifted(Signed<N>& into, const Signed<M>& x, std::uint32_t shift) {
    const std::uint64_t fill = negative(x) ? ~std::uint64_t{0} : 0;
    const auto word = [&](std::size_t i) { return i < M ? x[i] : fill; };
    Wide carry = 0;
    for (std::size_t i = 0; shift / 64 + i < N; ++i) {
        const std::uint64_t below = i == 0 ? 0 : word(i - 1);
        const std::uint64_t shifted =
            shift % 64 == 0 ? word(i) : word(i) << shift % 64 | below >> (64 - shift % 64);
        carry += Wide{into[shift / 64 + i]} + shifted;
        into[shift / 64 + i] = static_cast<std::uint64_t>(carry);
        carry >>= 64;
    }
}

Coefficient negated(const Coefficient& x) {
    Coefficient result;
    std::uint64_t carry = 1;
    for (std::size_t i = 0; i < x.size(); ++i) {
        result[i] = ~x[i] + carry;
        carry = carry != 0 && result[i] == 0 ? 1 : 0;
    }
    return result;
}

Coefficient plus(const Coefficient& x, const Coefficient& y) {
    Coefficient sum = x;
    add_shifted(sum, y, 0);
    return sum;
}

Coefficient power_of_two(std::uint32_t exponent) {
    Coefficient x{};
    x[exponent / 64] = std::uint64_t{1} << exponent % 64;
    return x;
}

// 2^bits - 1
Coefficient ones(std::uint32_t bits) {
    return plus(power_of_two(bits), negated({1}));
}

std::uint64_t modulo(const Coefficient& x, std::uint64_t prime) {
    const Coefficient size = negative(x) ? negated(x) : x;
    std::uint64_t remainder = 0;
    for (std::size_t i = size.size(); i-- > 0;) {
        remainder = static_cast<std::uint64_t>((Wide{remainder} << 64 | size[i]) % prime);
    }
    return negative(x) && remainder != 0 ? prime - remainder : remainder;
}

double magnitude(const Coefficient& x) {
    const Coefficient size = negative(x) ? negated(x) : x;
    double result = 0;
    for (std::size_t i = size.size(); i-- > 0;) result = result * 0x1p64 + static_cast<double>(size[i]);
    return result;
}

Coefficient random_below(Random& random, std::uint32_t bits) {
    Coefficient x{};
    for (std::uint32_t i = 0; i <= bits / 64; ++i) x[i] = random.next();
    x[bits / 64] &= (std::uint64_t{1} << bits % 64) - 1;
    return x;
}

// --- Splitting ---

std::uint64_t field_of(const std::vector<unsigned char>& operand, std::uint64_t byte, std::uint64_t bytes) {
    std::uint64_t field = 0;
    for (std::uint64_t i = 0; i < bytes && byte + i < operand.size(); ++i) {
        field |= std::uint64_t{operand[byte + i]} << 8 * i;
    }
    return field;
}

TEST_P(VstConversion, SplitsOperandsOfEveryLength) {
    Random random(1);
    const std::uint32_t chunks = chunks_of(primes());
    const std::uint64_t rows = 3;
    const std::uint64_t tile_bytes = tile_columns * point_bytes();
    for (std::uint64_t bytes = 0; bytes < 3 * tile_bytes + 40; ++bytes) {
        // The operand ends where its allocation does.
        std::vector<unsigned char> operand(bytes);
        const bool all_ones = bytes % 5 == 0;
        for (auto& byte : operand) byte = all_ones ? 0xff : static_cast<unsigned char>(random.next());
        const std::uint64_t first = bytes % 3;
        const std::uint64_t row_points = tile_columns + bytes % 4 * (bytes % 4);
        std::vector<double> result(chunks * rows * tile_columns, -1.5);
        kernels().split[primes()](result.data(), {operand.data(), bytes, first, row_points, rows});
        for (std::uint32_t c = 0; c < chunks; ++c) {
            const std::uint64_t width = c + 1 < chunks ? 6 : point_bytes() - 6 * c;
            for (std::uint64_t r = 0; r < rows; ++r) {
                for (std::uint64_t j = 0; j < tile_columns; ++j) {
                    const std::uint64_t point = first + r * row_points + j;
                    const std::uint64_t field = field_of(operand, point * point_bytes() + 6 * c, width);
                    ASSERT_EQ(result[(c * rows + r) * tile_columns + j], static_cast<double>(field))
                        << bytes << " bytes, field " << c << ", row " << r << ", point " << j;
                }
            }
        }
    }
}

// --- Reducing ---

TEST_P(VstConversion, ReducesFieldsModuloEveryPrime) {
    Random random(2);
    const std::uint32_t chunks = chunks_of(primes());
    const std::uint64_t rows = 5;
    const std::uint64_t count = rows * tile_columns;
    const std::uint64_t top = (std::uint64_t{1} << chunk_bits) - 1;
    for (std::uint64_t round = 0; round < 20 * kelvara_test::multiplier(); ++round) {
        std::vector<double> fields(chunks * count);
        for (auto& field : fields) {
            const std::uint64_t kind = random.next() % 8;
            field = static_cast<double>(round == 0   ? 0
                                        : round == 1 ? top
                                        : kind == 0  ? 0
                                        : kind == 1  ? top
                                                     : random.next() & top);
        }
        for (std::uint32_t i = 0; i < primes(); ++i) {
            std::vector<double> residues(count, 0.5);
            kernels().reduce[chunks](residues.data(), fields.data(), rows, constants().reduce[i]);
            const std::int64_t p = static_cast<std::int64_t>(prime(i));
            for (std::uint64_t e = 0; e < count; ++e) {
                Wide expected = 0;
                for (std::uint32_t c = chunks; c-- > 0;) {
                    expected =
                        ((expected << chunk_bits) + static_cast<std::uint64_t>(fields[c * count + e])) %
                        prime(i);
                }
                ASSERT_EQ(residues[e], std::nearbyint(residues[e]));
                ASSERT_LE(std::abs(residues[e]), 0.75 * static_cast<double>(p));
                const std::int64_t residue = static_cast<std::int64_t>(residues[e]);
                ASSERT_EQ(residue < 0 ? residue + p : residue, static_cast<std::int64_t>(expected));
            }
        }
    }
}

// --- Merging ---

// Rows of coefficients, their residues, and what they must come to.
class VstMerge : public VstConversion {
  protected:
    using Row = std::array<Coefficient, tile_columns>;

    // The number t(i) of a coefficient, another representative each time.
    double residue(Random& random, const Coefficient& x, std::uint32_t i) const {
        const std::uint64_t p = prime(i);
        const std::uint64_t t =
            static_cast<std::uint64_t>(Wide{modulo(x, p)} * constants().cofactor_inverse[i] % p);
        const double least = t <= p / 2 ? static_cast<double>(t) : -static_cast<double>(p - t);
        const double copies = random.next() % 2 == 0 ? 0 : static_cast<double>(random.next() % 11) - 5;
        return least + copies * static_cast<double>(p);
    }

    void fill(Random& random, const std::vector<Row>& rows) {
        row_stride_ = tile_columns + random.next() % 9;
        prime_stride_ = rows.size() * row_stride_ + random.next() % 9;
        // The last residue is the last of the allocation.
        residues_.assign((primes() - 1) * prime_stride_ + (rows.size() - 1) * row_stride_ + tile_columns,
                         NAN);
        for (std::uint32_t i = 0; i < primes(); ++i) {
            for (std::size_t r = 0; r < rows.size(); ++r) {
                for (std::uint64_t j = 0; j < tile_columns; ++j) at(i, r, j) = residue(random, rows[r][j], i);
            }
        }
    }
    double& at(std::uint32_t i, std::uint64_t r, std::uint64_t j) {
        return residues_[i * prime_stride_ + r * row_stride_ + j];
    }

    double run(Random& random, std::size_t rows) {
        out_stride_ = tile_columns * point_bytes() + random.next() % 20;
        spill_stride_ = spill_words + random.next() % 3;
        out_.assign((rows - 1) * out_stride_ + tile_columns * point_bytes(), 0xa5);
        spills_.assign((rows - 1) * spill_stride_ + spill_words, kelvara_test::garbage);
        return kernels().merge[primes()](
            constants().merge, {residues_.data(), prime_stride_, row_stride_, rows, out_.data(), out_stride_,
                                spills_.data(), spill_stride_});
    }

    void expect(const std::vector<Row>& rows, double size) const {
        double largest = 0;
        for (std::size_t r = 0; r < rows.size(); ++r) {
            RowSum sum{};
            for (std::uint32_t j = 0; j < tile_columns; ++j) {
                add_shifted(sum, rows[r][j], j * point_bits());
                largest = std::max(largest, magnitude(rows[r][j]));
            }
            const std::uint64_t row_bytes = tile_columns * point_bytes();
            for (std::uint64_t b = 0; b < out_stride_ && r * out_stride_ + b < out_.size(); ++b) {
                const unsigned expected = b < row_bytes ? sum[b / 8] >> 8 * (b % 8) & 0xff : 0xa5;
                ASSERT_EQ(out_[r * out_stride_ + b], expected) << "row " << r << ", byte " << b;
            }
            for (std::uint64_t w = 0; w < spill_stride_ && r * spill_stride_ + w < spills_.size(); ++w) {
                const std::uint64_t expected =
                    w < spill_words ? sum[row_bytes / 8 + w] : kelvara_test::garbage;
                ASSERT_EQ(spills_[r * spill_stride_ + w], expected) << "row " << r << ", word " << w;
            }
        }
        ASSERT_NEAR(size, largest, std::ldexp(4.0, static_cast<int>(2 * point_bits())));
    }

    void check(Random& random, const std::vector<Row>& rows) {
        fill(random, rows);
        const double size = run(random, rows.size());
        expect(rows, size);
    }

    Row same(const Coefficient& x) const {
        Row row;
        row.fill(x);
        return row;
    }

    std::vector<double> residues_;
    std::uint64_t prime_stride_ = 0, row_stride_ = 0, out_stride_ = 0, spill_stride_ = 0;
    std::vector<unsigned char> out_;
    std::vector<std::uint64_t> spills_;
};
INSTANTIATE_TEST_SUITE_P(EveryLevel, VstMerge,
                         testing::Combine(testing::Range(std::size_t{0}, std::size(levels)),
                                          testing::Range(fewest_primes, most_primes + 1),
                                          testing::ValuesIn(multipliers)),
                         parameter_name);

TEST_P(VstMerge, RandomCoefficients) {
    Random random(3);
    for (std::uint64_t round = 0; round < 30 * kelvara_test::multiplier(); ++round) {
        std::vector<Row> rows(1 + random.next() % 6);
        const std::uint32_t bits = round % 3 == 0 ? 2 * point_bits() + 20 : 0;
        for (auto& row : rows) {
            for (auto& x : row) {
                x = random_below(
                    random, bits != 0 ? bits : static_cast<std::uint32_t>(random.next() % largest_bits()));
                if (round % 2 != 0 && random.next() % 2 == 0) x = negated(x);
            }
        }
        check(random, rows);
    }
}

TEST_P(VstMerge, LargestCoefficients) {
    Random random(4);
    const Coefficient largest = ones(largest_bits());
    Row mixed = same(largest);
    for (std::size_t j = 0; j < mixed.size(); j += 2) mixed[j] = negated(largest);
    check(random, {same(largest), same(negated(largest)), mixed, same({})});
}

// Bytes of all ones and one more: the carry goes through the whole row, or starts inside it.
TEST_P(VstMerge, CarriesThroughWholeRows) {
    Random random(5);
    for (std::size_t start = 0; start < tile_columns; ++start) {
        Row up = same(ones(point_bits())), up_two = up, down = same({}), down_two = down;
        up[start] = plus(up[start], {1});
        up_two[start] = power_of_two(2 * point_bits());
        down[start] = negated({1});
        down_two[start] = negated(power_of_two(2 * point_bits()));
        check(random, {up, up_two, down, down_two, same(ones(2 * point_bits())), same(negated({1}))});
        Row both = down;
        both[tile_columns - 1] = plus(both[tile_columns - 1], {1});
        check(random, {both, up});
    }
}

TEST_P(VstMerge, NumbersNextToPowersOfTwo) {
    Random random(6);
    for (std::uint64_t round = 0; round < 30 * kelvara_test::multiplier(); ++round) {
        std::vector<Row> rows(4);
        for (auto& row : rows) {
            for (auto& x : row) {
                const std::uint32_t exponents[] = {0,
                                                   24,
                                                   47,
                                                   48,
                                                   96,
                                                   point_bits() - 1,
                                                   point_bits(),
                                                   point_bits() + 48,
                                                   2 * point_bits() - 1,
                                                   2 * point_bits(),
                                                   2 * point_bits() + 40};
                x = power_of_two(exponents[random.next() % std::size(exponents)]);
                const std::uint64_t kind = random.next() % 4;
                if (kind == 0) x = {};
                if (kind == 1) x = plus(x, negated({1}));
                if (random.next() % 2 == 0) x = negated(x);
            }
        }
        check(random, rows);
    }
}

// A wrong residue moves the coefficient by a multiple of P / prime. The higher bits of t(i), at least, take
// it out of the range that any product can reach.
TEST_P(VstMerge, WrongResiduesShow) {
    Random random(7);
    const double threshold = std::ldexp(1.0, static_cast<int>(largest_bits() + 8));
    for (std::uint32_t i = 0; i < primes(); ++i) {
        for (std::uint32_t bit = 42; bit < 49; ++bit) {
            std::vector<Row> rows(2);
            for (auto& row : rows) {
                for (auto& x : row) x = random_below(random, 2 * point_bits() + 20);
            }
            fill(random, rows);
            const std::uint64_t column = random.next() % tile_columns;
            double& wrong = at(i, random.next() % 2, column);
            wrong +=
                wrong > 0 ? -std::ldexp(1.0, static_cast<int>(bit)) : std::ldexp(1.0, static_cast<int>(bit));
            ASSERT_GE(run(random, rows.size()), threshold) << "prime " << i << ", bit " << bit;
        }
    }
}

// --- Constants ---

class VstConversionConstants : public testing::TestWithParam<std::tuple<std::uint32_t, std::uint32_t>> {};
INSTANTIATE_TEST_SUITE_P(All, VstConversionConstants,
                         testing::Combine(testing::Range(fewest_primes, most_primes + 1),
                                          testing::ValuesIn(multipliers)));

// The value of a number in limbs, modulo a prime that is none of the table's.
std::uint64_t value_of(const double* limbs, std::uint32_t primes, std::uint64_t modulus) {
    Wide sum = 0;
    for (std::uint32_t limb = 0; limb < primes; ++limb) {
        Wide unit = 1;
        for (std::uint32_t b = 0; b < limb_position(primes, limb); ++b) unit = 2 * unit % modulus;
        const std::int64_t value = static_cast<std::int64_t>(limbs[limb]);
        const std::uint64_t residue = value < 0 ? modulus - static_cast<std::uint64_t>(-value) % modulus
                                                : static_cast<std::uint64_t>(value) % modulus;
        sum = (sum + unit * residue) % modulus;
    }
    return static_cast<std::uint64_t>(sum);
}

TEST_P(VstConversionConstants, AreTheCofactors) {
    const auto [primes, multiplier] = GetParam();
    const ConversionConstants& constants = conversion_constants(primes, multiplier);
    EXPECT_EQ(constants.merge.primes, primes);
    for (const std::uint64_t modulus : {(std::uint64_t{1} << 61) - 1, ~std::uint64_t{0} / 8 - 54}) {
        Wide product = 1;
        for (std::uint32_t i = 0; i < primes; ++i)
            product = product * prime_table[multiplier / 2][i].value % modulus;
        double limbs[most_limbs] = {};
        std::copy(std::begin(constants.merge.product), std::end(constants.merge.product), limbs);
        // The rest stands at the topmost limb, and is a multiple of 2^48.
        Wide value = value_of(limbs, primes, modulus);
        for (std::uint32_t limb = 0; limb + 1 < primes; ++limb) limbs[limb] = 0;
        limbs[primes - 1] = limbs[primes] * 0x1p-48;
        value += (Wide{1} << 48) % modulus * value_of(limbs, primes, modulus);
        EXPECT_EQ(value % modulus, product);
        for (std::uint32_t i = 0; i < primes; ++i) {
            Wide cofactor = 1;
            for (std::uint32_t k = 0; k < primes; ++k) {
                if (k != i) cofactor = cofactor * prime_table[multiplier / 2][k].value % modulus;
            }
            EXPECT_EQ(value_of(constants.merge.cofactor[i], primes, modulus), cofactor);
            EXPECT_EQ(constants.merge.prime[i], static_cast<double>(prime_table[multiplier / 2][i].value));
        }
    }
}

TEST_P(VstConversionConstants, AreBalancedAndInvert) {
    const auto [primes, multiplier] = GetParam();
    const ConversionConstants& constants = conversion_constants(primes, multiplier);
    for (std::uint32_t i = 0; i < primes; ++i) {
        const std::uint64_t p = prime_table[multiplier / 2][i].value;
        Wide cofactor = 1;
        for (std::uint32_t k = 0; k < primes; ++k) {
            if (k != i) cofactor = cofactor * prime_table[multiplier / 2][k].value % p;
        }
        EXPECT_EQ(static_cast<std::uint64_t>(cofactor * constants.cofactor_inverse[i] % p), 1u);
        EXPECT_LT(constants.cofactor_inverse[i], p);
        for (std::uint32_t limb = 0; limb + 1 < primes; ++limb) {
            const double bound = std::ldexp(0.5, static_cast<int>(limb_width(primes, limb)));
            EXPECT_LE(std::abs(constants.merge.cofactor[i][limb]), bound);
            EXPECT_LE(std::abs(constants.merge.product[limb]), bound);
        }
        EXPECT_EQ(constants.reduce[i].powers[0], 1);
    }
}

#ifdef KELVARA_HAVE_GMP
TEST_P(VstConversionConstants, AgreeWithGmp) {
    const auto [primes, multiplier] = GetParam();
    const ConversionConstants& constants = conversion_constants(primes, multiplier);
    mpz_t product, value, term;
    mpz_inits(product, value, term, nullptr);
    for (std::uint32_t left_out = 0; left_out < primes; ++left_out) {
        mpz_set_ui(product, 1);
        for (std::uint32_t i = 0; i < primes; ++i) {
            if (i != left_out) mpz_mul_ui(product, product, prime_table[multiplier / 2][i].value);
        }
        mpz_set_ui(value, 0);
        for (std::uint32_t limb = 0; limb < primes; ++limb) {
            mpz_set_d(term, constants.merge.cofactor[left_out][limb]);
            mpz_mul_2exp(term, term, limb_position(primes, limb));
            mpz_add(value, value, term);
        }
        EXPECT_EQ(mpz_cmp(value, product), 0);
    }
    mpz_clears(product, value, term, nullptr);
}
#endif

}  // namespace
