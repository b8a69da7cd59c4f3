#include "platform/integrity_check.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/os/process.h"

namespace kelvara {
namespace {

class IntegrityCheckTest : public testing::Test {
  protected:
    void write(const std::string& content) {
        std::ofstream file(path_, std::ios::binary | std::ios::trunc);
        file << content;
    }
    void TearDown() override { std::filesystem::remove(path_); }

    const std::string path_ =
        (std::filesystem::temp_directory_path() /
         (std::string("kelvara-integrity-") + testing::UnitTest::GetInstance()->current_test_info()->name()))
            .string();
};

TEST_F(IntegrityCheckTest, FindsAnUntouchedFileIntact) {
    write("abc");
    IntegrityCheck check(path_);
    EXPECT_EQ(check.outcome(), IntegrityOutcome::unchecked);
    EXPECT_EQ(check.digest(), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    check();
    EXPECT_EQ(check.outcome(), IntegrityOutcome::intact);
}

TEST_F(IntegrityCheckTest, FindsAChangedByteAndRemembersIt) {
    const std::string content(3'000'000, 'x');
    write(content);
    IntegrityCheck check(path_);
    std::string changed = content;
    changed.back() = 'y';
    write(changed);
    check();
    EXPECT_EQ(check.outcome(), IntegrityOutcome::modified);
    write(content);
    check();
    EXPECT_EQ(check.outcome(), IntegrityOutcome::modified);
}

TEST_F(IntegrityCheckTest, SaysWhenTheFileCannotBeRead) {
    IntegrityCheck absent_at_start(path_);
    EXPECT_EQ(absent_at_start.digest(), "");
    write("abc");
    absent_at_start();
    EXPECT_EQ(absent_at_start.outcome(), IntegrityOutcome::unreadable);

    IntegrityCheck removed(path_);
    std::filesystem::remove(path_);
    removed();
    EXPECT_EQ(removed.outcome(), IntegrityOutcome::unreadable);
    EXPECT_NE(removed.digest(), "");
}

TEST_F(IntegrityCheckTest, ReadsTheRunningProgram) {
    IntegrityCheck check(qmp::os::program_path().value());
    check();
    EXPECT_EQ(check.outcome(), IntegrityOutcome::intact);
    EXPECT_EQ(check.digest().size(), 64u);
}

TEST(IntegrityOutcome, Texts) {
    EXPECT_STREQ(to_text(IntegrityOutcome::unchecked), "Unchecked");
    EXPECT_STREQ(to_text(IntegrityOutcome::intact), "Intact");
    EXPECT_STREQ(to_text(IntegrityOutcome::modified), "Modified");
    EXPECT_STREQ(to_text(IntegrityOutcome::unreadable), "Unreadable");
}

}  // namespace
}  // namespace kelvara
