#include "platform/sha256.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "platform/processor_features.h"

namespace qmp {
namespace {

std::span<const std::uint8_t> bytes_of(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string digest_of(std::string_view text, Sha256Compression compression = sha256_compression()) {
    Sha256 hash(compression);
    hash.append(bytes_of(text));
    return to_hexadecimal(hash.finish());
}

// The examples published with the standard.
TEST(Sha256, PublishedVectors) {
    EXPECT_EQ(digest_of(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(digest_of("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(digest_of("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(
        digest_of(
            "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmno"
            "pqrsmnopqrstnopqrstu"),
        "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1");
    EXPECT_EQ(digest_of(std::string(1'000'000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, PiecesMakeNoDifference) {
    std::string text;
    for (int i = 0; i < 300; ++i) text += static_cast<char>(i * 7);
    for (std::size_t size = 50; size <= 140; ++size) {
        const std::string whole = text.substr(0, size);
        const std::string expected = digest_of(whole);
        for (const std::size_t piece : {1u, 3u, 63u, 64u, 65u}) {
            Sha256 hash;
            for (std::size_t start = 0; start < size; start += piece) {
                hash.append(bytes_of(whole).subspan(start, std::min(piece, size - start)));
                hash.append({});
            }
            EXPECT_EQ(to_hexadecimal(hash.finish()), expected) << size << " in pieces of " << piece;
        }
    }
}

TEST(Sha256, ThePlainCodeAgreesWithThePublishedVectors) {
    EXPECT_EQ(digest_of("abc", sha256_compression_plain),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(digest_of(std::string(1'000'000, 'a'), sha256_compression_plain),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, TheProcessorsInstructionsAgreeWithThePlainCode) {
    if (!processor_features().sha) GTEST_SKIP() << "this processor has no SHA instructions";
    EXPECT_EQ(sha256_compression(), sha256_compression_sha);
    std::string text;
    std::uint32_t random = 1;
    for (std::size_t size = 0; size < 1000; ++size) {
        EXPECT_EQ(digest_of(text, sha256_compression_sha), digest_of(text, sha256_compression_plain)) << size;
        random = random * 1664525 + 1013904223;
        text += static_cast<char>(random >> 24);
    }
}

}  // namespace
}  // namespace qmp
