// Whole sessions against reference digits: every algorithm of a constant, exact files.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "platform/sha2.h"
#include "sessions/session_run.h"
#include "support/reference_digits.h"

namespace kelvara {
namespace {

using kelvara_test::Algorithm;
using kelvara_test::Outcome;
using kelvara_test::run_session;

std::string sha256_of(const std::string& text) {
    qmp::Sha256 digest;
    digest.append({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    return qmp::to_hexadecimal(digest.finish());
}

// The files of a session against the reference digits of that name.
void expect_reference_files(const Algorithm& algorithm, const std::string& name,
                            std::initializer_list<std::uint64_t> sizes) {
    for (const std::uint64_t digits : sizes) {
        SCOPED_TRACE(name + ", " + std::to_string(digits));
        const auto reference = kelvara_test::reference_digits(name, digits);
        const Outcome result = run_session(algorithm, digits, 2, "pushpool");
        EXPECT_EQ(sha256_of(result.decimal), reference.sha256);
        EXPECT_EQ(sha256_of(result.hexadecimal), reference.hex_sha256);
        EXPECT_EQ(result.decimal_output.hash, reference.hash);
        EXPECT_EQ(result.hexadecimal_output.digits, reference.hex_digits);
        const std::string& last = result.decimal_output.last_digits;
        EXPECT_EQ(last.substr(last.size() - 50), reference.last50);
        std::string counts;
        for (int digit = 0; digit < 10; ++digit) {
            counts += (digit ? " " : "") + std::to_string(result.decimal_output.counts[digit]);
        }
        EXPECT_EQ(counts, reference.digit_counts);
    }
}

class GoldenDigits : public testing::TestWithParam<Algorithm> {};

TEST_P(GoldenDigits, FilesMatchTheReference) {
    expect_reference_files(GetParam(), GetParam().constant, {100, 1000, 10000, 100000, 1000000});
}

INSTANTIATE_TEST_SUITE_P(EveryAlgorithm, GoldenDigits, testing::ValuesIn(kelvara_test::pi_and_e),
                         kelvara_test::algorithm_test_name);

TEST(GoldenDigitsOf, SquareRootsAndTheGoldenRatio) {
    expect_reference_files({"sqrt", "newton", "Newton", 2}, "sqrt(2)", {100, 1000, 10000, 100000, 1000000});
    expect_reference_files({"sqrt", "newton", "Newton", 200}, "sqrt(200)", {100, 1000, 10000, 100000});
    expect_reference_files({"sqrt", "newton", "Newton", 125}, "sqrt(125)", {100, 1000, 10000, 100000});
    expect_reference_files({"goldenratio", "newton", "Newton"}, "golden",
                           {100, 1000, 10000, 100000, 1000000});
}

TEST(GoldenDigitsOf, ArcCoth) {
    for (const std::uint64_t x : {2u, 4294967295u}) {
        expect_reference_files({"arccoth", "series", "Taylor", x}, "arccoth(" + std::to_string(x) + ")",
                               {100, 1000, 10000, 100000});
    }
}

TEST(GoldenDigitsOf, ZetaOfThreeTheLemniscateAndCatalansConstant) {
    constexpr Algorithm algorithms[] = {
        {"zeta(3)", "az-long", "AZ (long)"}, {"zeta(3)", "az-short", "AZ (short)"},
        {"lemniscate", "gauss", "Gauss"},    {"lemniscate", "sebah", "Sebah"},
        {"catalan", "lupas", "Lupas"},       {"catalan", "huvent", "Huvent"},
    };
    for (const Algorithm& algorithm : algorithms) {
        expect_reference_files(algorithm, algorithm.constant, {100, 1000, 10000, 100000});
    }
}

TEST(GoldenDigitsOf, EulersConstantByBothMethods) {
    expect_reference_files({"gamma", "brent-refined", "Brent-McMillan (refined)"}, "gamma",
                           {100, 1000, 10000, 100000});
    expect_reference_files({"gamma", "brent-original", "Brent-McMillan"}, "gamma", {100, 1000, 10000, 100000});
}

// The digits of 10 x are those of x one place further.
void expect_shifted(const Algorithm& one, const Algorithm& ten_times, const std::string& shared) {
    for (const std::uint64_t digits : {100, 12345, 54321}) {
        const std::string x = run_session(one, digits, 2, "pushpool").decimal;
        const std::string ten_x = run_session(ten_times, digits, 2, "pushpool").decimal;
        const std::size_t point = ten_x.find('.');
        ASSERT_EQ(x.find('.'), 1u);
        // What stands behind the point of 10 x begins one digit behind the point of x.
        EXPECT_EQ(x.substr(3), ten_x.substr(point + 1, digits - 1)) << digits;
        EXPECT_EQ(ten_x.substr(0, point), shared);
    }
}

TEST(GoldenDigitsOf, TheVerificationsThatTheMenusName) {
    expect_shifted({"sqrt", "newton", "Newton", 2}, {"sqrt", "newton", "Newton", 200}, "14");
    // 10 times the golden ratio is sqrt(125) + 5.
    expect_shifted({"goldenratio", "newton", "Newton"}, {"sqrt", "newton", "Newton", 125}, "11");
}

TEST(GoldenDigitsOf, Logarithms) {
    for (const std::uint64_t n : {2, 3, 10}) {
        const std::string reference = "log(" + std::to_string(n) + ")";
        for (const Algorithm& algorithm : {Algorithm{"log", "machin-primary", "Machin (primary)", n},
                                           Algorithm{"log", "machin-secondary", "Machin (secondary)", n}}) {
            expect_reference_files(algorithm, reference, {100, 1000, 10000, 100000});
        }
    }
}

}  // namespace
}  // namespace kelvara
