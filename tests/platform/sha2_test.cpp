#include "platform/sha2.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/processor_features.h"

namespace qmp {
namespace {

template <typename Hash, typename... Compression>
std::string digest_of(std::string_view text, Compression... compression) {
    Hash hash(compression...);
    hash.append(bytes_of(text));
    return to_hexadecimal(hash.finish());
}

template <typename Hash>
std::string keyed_digest_of(const std::string& key, const std::string& text) {
    KeyedDigest<Hash> digest(bytes_of(key));
    digest.append(bytes_of(text));
    return to_hexadecimal(digest.finish());
}

// The examples published with the standard.
TEST(Sha256, PublishedVectors) {
    EXPECT_EQ(digest_of<Sha256>(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(digest_of<Sha256>("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(digest_of<Sha256>("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(
        digest_of<Sha256>(
            "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmno"
            "pqrsmnopqrstnopqrstu"),
        "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1");
    EXPECT_EQ(digest_of<Sha256>(std::string(1'000'000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, ThePlainCodeAgreesWithThePublishedVectors) {
    EXPECT_EQ(digest_of<Sha256>("abc", sha256_compression_plain),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(digest_of<Sha256>(std::string(1'000'000, 'a'), sha256_compression_plain),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, TheProcessorsInstructionsAgreeWithThePlainCode) {
    if (!processor_features().sha) GTEST_SKIP() << "this processor has no SHA instructions";
    EXPECT_EQ(sha2_compression<std::uint32_t>(), sha256_compression_sha);
    std::string text;
    std::uint32_t random = 1;
    for (std::size_t size = 0; size < 1000; ++size) {
        EXPECT_EQ(digest_of<Sha256>(text, sha256_compression_sha),
                  digest_of<Sha256>(text, sha256_compression_plain))
            << size;
        random = random * 1664525 + 1013904223;
        text += static_cast<char>(random >> 24);
    }
}

TEST(Sha512, PublishedVectors) {
    EXPECT_EQ(digest_of<Sha512>(""),
              "cf83e1357eefb8bdf1542850d66d8007d620e4050b5715dc83f4a921d36ce9ce"
              "47d0d13c5d85f2b0ff8318d2877eec2f63b931bd47417a81a538327af927da3e");
    EXPECT_EQ(digest_of<Sha512>("abc"),
              "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
              "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f");
    EXPECT_EQ(
        digest_of<Sha512>(
            "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmno"
            "pqrsmnopqrstnopqrstu"),
        "8e959b75dae313da8cf4f72814fc143f8f7779c6eb9f7fa17299aeadb6889018"
        "501d289e4900f7e4331b99dec4b5433ac7d329eeb6dd26545e96e55b874be909");
    EXPECT_EQ(digest_of<Sha512>(std::string(1'000'000, 'a')),
              "e718483d0ce769644e2e42c7bc15b4638e1f98b13b2044285632a803afa973eb"
              "de0ff244877ea60a4cb0432ce577c31beb009c5c2c49aa2e4eadb217ad8cc09b");
}

template <typename Hash>
class Sha2Pieces : public testing::Test {};
using Hashes = testing::Types<Sha256, Sha512>;
TYPED_TEST_SUITE(Sha2Pieces, Hashes);

TYPED_TEST(Sha2Pieces, MakeNoDifference) {
    std::string text;
    for (int i = 0; i < 300; ++i) text += static_cast<char>(i * 7);
    for (std::size_t size = 50; size <= 270; ++size) {
        const std::string whole = text.substr(0, size);
        const std::string expected = digest_of<TypeParam>(whole);
        for (const std::size_t piece : {1u, 3u, 63u, 64u, 65u, 127u, 129u}) {
            TypeParam hash;
            for (std::size_t start = 0; start < size; start += piece) {
                hash.append(bytes_of(whole).subspan(start, std::min(piece, size - start)));
                hash.append({});
            }
            EXPECT_EQ(to_hexadecimal(hash.finish()), expected) << size << " in pieces of " << piece;
        }
    }
}

struct KeyedExample {
    std::string key, text, sha256, sha512;
};

// The examples published with RFC 4231, but for the one of a shortened digest.
TEST(KeyedDigest, PublishedVectors) {
    std::string counting_key;
    for (char c = 1; c <= 25; ++c) counting_key += c;
    const KeyedExample examples[] = {
        {std::string(20, '\x0b'), "Hi There",
         "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7",
         "87aa7cdea5ef619d4ff0b4241a1d6cb02379f4e2ce4ec2787ad0b30545e17cde"
         "daa833b7d6b8a702038b274eaea3f4e4be9d914eeb61f1702e696c203a126854"},
        {"Jefe", "what do ya want for nothing?",
         "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843",
         "164b7a7bfcf819e2e395fbe73b56e0a387bd64222e831fd610270cd7ea250554"
         "9758bf75c05a994a6d034f65f8f0e6fdcaeab1a34d4a6b4b636e070a38bce737"},
        {std::string(20, '\xaa'), std::string(50, '\xdd'),
         "773ea91e36800e46854db8ebd09181a72959098b3ef8c122d9635514ced565fe",
         "fa73b0089d56a284efb0f0756c890be9b1b5dbdd8ee81a3655f83e33b2279d39"
         "bf3e848279a722c806b485a47e67c807b946a337bee8942674278859e13292fb"},
        {counting_key, std::string(50, '\xcd'),
         "82558a389a443c0ea4cc819899f2083a85f0faa3e578f8077a2e3ff46729665b",
         "b0ba465637458c6990e5a8c5f61d4af7e576d97ff94b872de76f8050361ee3db"
         "a91ca5c11aa25eb4d679275cc5788063a5f19741120c4f2de2adebeb10a298dd"},
        {std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First",
         "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54",
         "80b24263c7c1a3ebb71493c1dd7be8b49b46d1f41b4aeec1121b013783f8f352"
         "6b56d037e05f2598bd0fd2215d6a1e5295e64f73f63f0aec8b915a985d786598"},
        {std::string(131, '\xaa'),
         "This is a test using a larger than block-size key and a larger than block-size data. The key needs "
         "to "
         "be hashed before being used by the HMAC algorithm.",
         "9b09ffa71b942fcb27635fbcd5b0e944bfdc63644f0713938a7f51535c3a35e2",
         "e37b6a775dc87dbaa4dfa9f96e5e3ffddebd71f8867289865df5a32d20cdc944"
         "b6022cac3c4982b10d5eeb55c3e4de15134676fb6de0446065c97440fa8c6a58"},
    };
    for (const KeyedExample& example : examples) {
        EXPECT_EQ(keyed_digest_of<Sha256>(example.key, example.text), example.sha256) << example.text;
        EXPECT_EQ(keyed_digest_of<Sha512>(example.key, example.text), example.sha512) << example.text;
    }
}

}  // namespace
}  // namespace qmp
