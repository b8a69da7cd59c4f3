#include "platform/integrity_check.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/integrity_seal.h"
#include "platform/os/process.h"
#include "support/folder.h"

namespace kelvara {
namespace {

using enum IntegrityOutcome;

// SHA-256 of "abc", and of the key with that digest's digits, both taken with another program (sha256sum).
const std::string digest_of_abc = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
const std::string seal_of_abc =
    "Kelvara seal 1: 4d1a08331587bb855da703fc557f84ede8718073e60d9f734a431009aa8b919b";

class IntegrityCheckTest : public testing::Test {
  protected:
    void write(const std::string& content) {
        std::ofstream file(path_, std::ios::binary | std::ios::trunc);
        file << content;
    }
    void write_sealed(const std::string& content) {
        qmp::Sha256 hash;
        hash.append({reinterpret_cast<const std::uint8_t*>(content.data()), content.size()});
        write(content + seal_of(hash.finish()));
    }
    std::string read() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    IntegrityOutcome outcome() const { return IntegrityCheck(path_).outcome(); }

    const kelvara_test::TemporaryFolder folder_;
    const std::string path_ = folder_.path("program");
};

TEST_F(IntegrityCheckTest, TheSealIsFixed) {
    write("abc" + seal_of_abc);
    IntegrityCheck check(path_);
    EXPECT_EQ(check.outcome(), intact);
    EXPECT_EQ(check.digest(), digest_of_abc);
    check();
    EXPECT_EQ(check.outcome(), intact);
}

TEST_F(IntegrityCheckTest, EveryChangedByteShows) {
    for (const std::size_t size : {0u, 1u, 1000u, 300'000u}) {
        write_sealed(std::string(size, 'x'));
        EXPECT_EQ(outcome(), intact) << size;
        const std::string sealed = read();
        ASSERT_EQ(sealed.size(), size + seal_size);
        for (std::size_t position = 0; position < sealed.size();
             position += position < size ? size / 7 + 1 : 1) {
            std::string changed = sealed;
            changed[position] = static_cast<char>(changed[position] ^ 1);
            write(changed);
            // A seal whose mark is gone is none.
            const bool in_mark = position >= size && position < size + seal_mark.size();
            EXPECT_EQ(outcome(), in_mark ? unsealed : modified) << position << " of " << size;
        }
    }
}

TEST_F(IntegrityCheckTest, ACutOrLongerFileShows) {
    write_sealed("content");
    const std::string sealed = read();
    for (std::size_t size = 0; size < sealed.size(); ++size) {
        write(sealed.substr(0, size));
        EXPECT_EQ(outcome(), unsealed) << size;
    }
    write(sealed.substr(1));
    EXPECT_EQ(outcome(), modified);
    write(sealed + "x");
    EXPECT_EQ(outcome(), unsealed);
    // Capital digits are not what the build writes.
    std::string capital = sealed;
    for (std::size_t i = sealed.size() - 64; i < sealed.size(); ++i)
        capital[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(capital[i])));
    write(capital);
    EXPECT_EQ(outcome(), modified);
}

TEST_F(IntegrityCheckTest, AFileSealedAgainHasAnotherDigest) {
    write_sealed("content");
    const std::string digest = IntegrityCheck(path_).digest();
    write_sealed("contend");
    EXPECT_EQ(outcome(), intact);
    EXPECT_NE(IntegrityCheck(path_).digest(), digest);
}

TEST_F(IntegrityCheckTest, FindsAChangeSinceTheStartAndRemembersIt) {
    for (const bool sealed : {true, false}) {
        const std::string content(3'000'000, 'x');
        const auto put = [&](const std::string& text) { sealed ? write_sealed(text) : write(text); };
        put(content);
        IntegrityCheck check(path_);
        check();
        EXPECT_EQ(check.outcome(), sealed ? intact : unsealed);
        std::string changed = content;
        changed.back() = 'y';
        put(changed);
        check();
        EXPECT_EQ(check.outcome(), modified);
        put(content);
        check();
        EXPECT_EQ(check.outcome(), modified);
    }
}

TEST_F(IntegrityCheckTest, FindsALostSeal) {
    write_sealed("abc");
    IntegrityCheck check(path_);
    write("abc");
    check();
    EXPECT_EQ(check.outcome(), modified);
    EXPECT_EQ(check.digest(), digest_of_abc);
}

TEST_F(IntegrityCheckTest, SaysWhenTheFileCannotBeRead) {
    IntegrityCheck absent_at_start(path_);
    EXPECT_EQ(absent_at_start.outcome(), unreadable);
    EXPECT_EQ(absent_at_start.digest(), "");
    write_sealed("abc");
    absent_at_start();
    EXPECT_EQ(absent_at_start.outcome(), unreadable);

    IntegrityCheck removed(path_);
    std::filesystem::remove(path_);
    removed();
    EXPECT_EQ(removed.outcome(), unreadable);
    EXPECT_EQ(removed.digest(), digest_of_abc);

    EXPECT_EQ(IntegrityCheck(folder_.path()).outcome(), unreadable);
}

TEST_F(IntegrityCheckTest, FindsThisTestProgramUnsealed) {
    IntegrityCheck check(qmp::os::program_path().value());
    check();
    EXPECT_EQ(check.outcome(), unsealed);
    EXPECT_EQ(check.digest().size(), 64u);
}

TEST(IntegrityOutcome, Texts) {
    EXPECT_STREQ(to_text(intact), "Intact");
    EXPECT_STREQ(to_text(modified), "Modified");
    EXPECT_STREQ(to_text(unsealed), "Unsealed");
    EXPECT_STREQ(to_text(unreadable), "Unreadable");
}

}  // namespace
}  // namespace kelvara
