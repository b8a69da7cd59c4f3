#include "digitfiles/ordalis/prefix_hash.h"

#include <gtest/gtest.h>

#include <string>

#include "digitfiles/files.h"
#include "digitfiles/text_reader.h"
#include "support/console.h"

namespace Ordalis {
namespace {

using kelvara_test::printed_by;
using kelvara_test::TemporaryFile;
using Wide = unsigned __int128;

constexpr std::uint64_t p = (std::uint64_t{1} << 61) - 1;

// Digit by digit, and what is printed of it.
std::uint64_t plain_hash(const std::string& values) {
    std::uint64_t h = 0;
    for (const char value : values) {
        const Wide x = Wide{h} * 10 + static_cast<unsigned char>(value);
        h = static_cast<std::uint64_t>((x & p) + (x >> 61));
    }
    return h > p ? h - p : h;
}

std::string values_of(std::string digits) {
    for (char& digit : digits) digit = static_cast<char>(digit - '0');
    return digits;
}

std::uint64_t hash_of(const std::string& digits) {
    PrefixHash hash;
    hash.append(values_of(digits));
    return hash.value();
}

std::string random_values(std::uint64_t count) {
    std::string values;
    std::uint64_t state = 88172645463325252u;
    while (values.size() < count) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        values += static_cast<char>(state % 10);
    }
    return values;
}

TEST(PrefixHash, IsTheNumberWhereThatIsSmall) {
    EXPECT_EQ(hash_of(""), 0u);
    EXPECT_EQ(hash_of("314"), 314u);
    EXPECT_EQ(hash_of("2305843009213693950"), p - 1);
    EXPECT_EQ(hash_of("2305843009213693952"), 1u);
}

TEST(PrefixHash, ShowsTheModulusForItsMultiplesAndZeroForZero) {
    EXPECT_EQ(hash_of("2305843009213693951"), p);
    EXPECT_EQ(hash_of("4611686018427387902"), p);
    EXPECT_EQ(hash_of("23058430092136939510000"), p);
    EXPECT_EQ(hash_of(std::string(100, '0')), 0u);
    EXPECT_EQ(plain_hash(values_of("23058430092136939510000")), p);
    EXPECT_EQ(plain_hash(values_of(std::string(100, '0'))), 0u);
}

TEST(PrefixHash, AgreesWithTheRuleDigitByDigit) {
    const std::string values = random_values(40000);
    for (const std::uint64_t count : {1, 18, 19, 20, 37, 38, 39, 511 * 19, 512 * 19, 512 * 19 + 1, 40000}) {
        PrefixHash hash;
        hash.append(std::span(values).first(count));
        EXPECT_EQ(hash.value(), plain_hash(values.substr(0, count))) << count;
    }
}

TEST(PrefixHash, DoesNotDependOnThePieces) {
    const std::string values = random_values(1000);
    PrefixHash whole;
    whole.append(values);
    for (const std::uint64_t piece : {1, 7, 19, 64, 999}) {
        PrefixHash hash;
        for (std::uint64_t i = 0; i < values.size(); i += piece) hash.append(values.substr(i, piece));
        EXPECT_EQ(hash.value(), whole.value()) << piece;
    }
}

TEST(HashOfAFile, IsOfTheIntegerPartAndTheDigits) {
    const TemporaryFile file("digits.txt", "3.14");
    qmp::TextReader reader(file.path());
    EXPECT_EQ(printed_by([&] { hash_prefix(reader, 2, file.path()); }), "2 :\t314\n");
    EXPECT_EQ(printed_by([&] { hash_prefix(reader, 1, file.path()); }), "1 :\t31\n");
}

TEST(HashOfAFile, TellsHowFarItHasCome) {
    const TemporaryFile file("digits.txt", "12.34567");
    qmp::TextReader reader(file.path());
    EXPECT_EQ(printed_by([&] { hash_prefix(reader, 5, file.path(), 2); }),
              "2 :\t1234\n"
              "4 :\t123456\n"
              "5 :\t1234567\n");
}

TEST(HashOfAFile, ShowsTheModulusInPlaceOfZero) {
    const TemporaryFile file("digits.txt", "230.5843009213693951");
    qmp::TextReader reader(file.path());
    EXPECT_EQ(printed_by([&] { hash_prefix(reader, 16, file.path()); }), "16 :\t2305843009213693951\n");
}

// First digits as a header may hold them.
class HeaderReader final : public qmp::DigitReader {
  public:
    explicit HeaderReader(std::string first_digits) : first_digits_(std::move(first_digits)) {}
    const char* get_extension() const override { return "test"; }
    void read(std::uint64_t, char*, std::uint64_t) override {}
    void print_info() const override {}
    std::uint32_t get_radix() const override { return 10; }
    std::uint64_t get_digits() const override { return 2; }
    void set_raw(bool) override { empty_buffer(); }
    bool check_range(std::uint64_t, std::uint64_t) override { return true; }
    std::string get_first_digits(std::uint64_t) override { return first_digits_; }

  private:
    std::string first_digits_;
};

void expect_refused(const std::string& first_digits, const std::string& message) {
    HeaderReader reader(first_digits);
    kelvara_test::expect_file_exception([&] { hash_prefix(reader, 1, "x - 0.qcd"); }, "ComputeHash()",
                                        message, "x - 0.qcd");
}

TEST(HashOfAFile, NeedsAPoint) {
    const std::string message = "A decimal place was not found within the first 63 bytes of the file.";
    expect_refused("", message);
    expect_refused("3", message);
}

TEST(HashOfAFile, NeedsDigitsBeforeThePoint) {
    expect_refused("-3.", "Invalid Digit");
    expect_refused("a.", "Invalid Digit");
}

}  // namespace
}  // namespace Ordalis
