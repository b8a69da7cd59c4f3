// Whole outputs against digits that two independent libraries agree on.
#ifdef KELVARA_HAVE_GMP

#include <gmp.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "multiply/algorithm_table.h"
#include "platform/sha2.h"
#include "radix/output_fixture.h"
#include "support/reference_digits.h"

namespace qmp {
namespace {

using kelvara_test::Number;
using kelvara_test::Output;
using kelvara_test::reference_digits;
using kelvara_test::ReferenceDigits;
using kelvara_test::Session;

class SquareRootOfTwo : public testing::TestWithParam<std::uint64_t> {
  protected:
    const ReferenceDigits reference = reference_digits("sqrt(2)", GetParam());
    const ParallelContext one_task = ParallelContext::sequential();
};

Number square_root_of_two(std::uint64_t words) {
    mpz_t root;
    mpz_init_set_ui(root, 2);
    mpz_mul_2exp(root, root, 128 * words);
    mpz_sqrt(root, root);
    std::vector<Word> all(words + 1, 0);
    mpz_export(all.data(), nullptr, -1, 8, 0, 0, root);
    mpz_clear(root);
    const Word integer = all.back();
    all.pop_back();
    return Number(all, integer);
}

std::string sha256_text(const std::string& text) {
    Sha256 hash;
    hash.append({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    return to_hexadecimal(hash.finish());
}

std::string last_of(const Output& output) {
    const std::string& last = output.digits.last_digits;
    return last.substr(last.size() - 50);
}

TEST_P(SquareRootOfTwo, Decimal) {
    if (GetParam() / 10 > basic_table_64().largest_product())
        GTEST_SKIP() << "more than this build multiplies";
    Session session = Session::decimal(one_task, GetParam());
    const Output output = session.write_decimal(square_root_of_two(GetParam() / 19 + 10).view(), GetParam());
    EXPECT_EQ(output.digits.hash, reference.hash);
    EXPECT_EQ(last_of(output), reference.last50);
    EXPECT_EQ(sha256_text(output.text), reference.sha256);
    std::string counts;
    for (std::size_t i = 0; i < 10; ++i) counts += (i ? " " : "") + std::to_string(output.digits.counts[i]);
    EXPECT_EQ(counts, reference.digit_counts);
}

TEST_P(SquareRootOfTwo, Hexadecimal) {
    Session session = Session::hexadecimal(one_task, reference.hex_digits);
    const Output output =
        session.write_hexadecimal(square_root_of_two(GetParam() / 19 + 10).view(), reference.hex_digits);
    EXPECT_EQ(last_of(output), reference.hex_last50);
    EXPECT_EQ(sha256_text(output.text), reference.hex_sha256);
}

INSTANTIATE_TEST_SUITE_P(Digits, SquareRootOfTwo, testing::Values(100, 1000, 10000, 100000, 1000000));

}  // namespace
}  // namespace qmp

#endif
