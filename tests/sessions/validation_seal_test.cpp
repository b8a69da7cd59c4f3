#include "sessions/validation_seal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "platform/sha2.h"
#include "sessions/validation_key.h"

namespace kelvara {
namespace {

constexpr auto version_1_2 = ValidationFormat::version_1_2;
constexpr auto version_1_3 = ValidationFormat::version_1_3;

ValidationSealer sealer(std::string_view secret, std::string_view program) {
    return ValidationSealer(qmp::bytes_of(secret), program);
}

// Computed with another implementation of the digests.
TEST(ValidationSeal, IsAKeyedDigestOfTheContent) {
    const ValidationSeal seal = sealer("secret", "00ff").seal(version_1_3, "content\r\n----");
    EXPECT_EQ(seal.checksum0, "7a257c6807ed71a387f70709fc406183fed2436b0930cb6249f773596f43cdf7");
    EXPECT_EQ(seal.checksum1,
              "4867f0a372ed4a1e0062cac454af43939da416c5ad54a4b6afe984e434776fe7"
              "2abc8665c858ec05f4c57580fbb54033e9ca040e33a62a229511bc0dd8a178a1");
    const ValidationSeal old = sealer("secret", "00ff").seal(version_1_2, "content\r\n----");
    EXPECT_EQ(old.checksum0, "9fe275e4ec750ae79d84ad1a333da8d5a1518b5cdda5033f660717d1bc29cc45");
    EXPECT_EQ(old.checksum1,
              "9bfbd89e09babc66628c7a78d0ba466b8f5e7df7b86782ea98856f843e3c795c"
              "2f84a09a63e3575d9b0cebf55b0fcc264b0599da18f662b132b195f0724dff35");
}

TEST(ValidationSeal, DependsOnSecretProgramFormatAndContent) {
    std::set<std::string> seen;
    for (const char* secret : {"secret", "Secret"}) {
        for (const char* program : {"00ff", "00fe", ""}) {
            for (const char* content : {"content", "Content", ""}) {
                const ValidationSeal seal = sealer(secret, program).seal(version_1_3, content);
                EXPECT_TRUE(seen.insert(seal.checksum0).second);
                EXPECT_TRUE(seen.insert(seal.checksum1).second);
            }
        }
    }
    const ValidationSeal old = sealer("secret", "00ff").seal(version_1_2, "content");
    EXPECT_TRUE(seen.insert(old.checksum0).second);
    EXPECT_TRUE(seen.insert(old.checksum1).second);
}

TEST(ValidationSeal, OlderFormatDoesNotKnowTheExecutable) {
    EXPECT_EQ(sealer("secret", "00ff").seal(version_1_2, "content"),
              sealer("secret", "00fe").seal(version_1_2, "content"));
    EXPECT_FALSE(sealer("secret", "").seal(version_1_2, "content") ==
                 sealer("Secret", "").seal(version_1_2, "content"));
}

TEST(ValidationKey, IsThatOfTheBuildAndNoneOfItsShares) {
    const ValidationKey key = validation_key();
    EXPECT_EQ(key, validation_key());
    EXPECT_GT(std::set<std::uint8_t>(key.begin(), key.end()).size(), 20u);
    for (const auto& share : validation_key_shares) {
        EXPECT_FALSE(std::equal(key.begin(), key.end(), std::begin(share)));
    }
}

}  // namespace
}  // namespace kelvara
