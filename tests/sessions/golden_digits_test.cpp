// Whole sessions against reference digits: every algorithm of a constant, exact files.
#include <gtest/gtest.h>

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

class GoldenDigits : public testing::TestWithParam<Algorithm> {};

TEST_P(GoldenDigits, FilesMatchTheReference) {
    for (const std::uint64_t digits : {100, 1000, 10000, 100000, 1000000}) {
        SCOPED_TRACE(digits);
        const auto reference = kelvara_test::reference_digits(GetParam().constant, digits);
        const Outcome result = run_session(GetParam(), digits, 2, "pushpool");
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

INSTANTIATE_TEST_SUITE_P(EveryAlgorithm, GoldenDigits, testing::ValuesIn(kelvara_test::pi_and_e),
                         kelvara_test::algorithm_test_name);

}  // namespace
}  // namespace kelvara
