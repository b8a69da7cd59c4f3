// The seal of real executables: what a changed program says of itself.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/integrity_check.h"
#include "platform/integrity_seal.h"
#include "support/child_process.h"
#include "support/folder.h"

namespace kelvara {
namespace {

using kelvara_test::run_child;

class SealedProgramTest : public testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::copy_file(KELVARA_SHELL_DRIVER, folder_.native(name_));
        size_ = std::filesystem::file_size(folder_.native(name_));
    }

    void flip(std::uint64_t position) const {
        std::fstream file(folder_.native(name_), std::ios::in | std::ios::out | std::ios::binary);
        file.seekg(static_cast<std::streamoff>(position));
        const int byte = file.get();
        file.seekp(static_cast<std::streamoff>(position));
        file.put(static_cast<char>(byte ^ 1));
    }

    // What the copy says of itself when it runs.
    std::string outcome() const {
        static const std::string label = "\nintegrity: ";
        const std::string output = run_child({folder_.path(name_), "skip-warnings"}).output;
        const std::size_t start = output.find(label);
        if (start == std::string::npos) return output;
        const std::size_t value = start + label.size();
        return output.substr(value, output.find('\n', value) - value);
    }

    const kelvara_test::TemporaryFolder folder_;
    const std::string name_ = "copy.exe";
    std::uint64_t size_ = 0;
};

TEST_F(SealedProgramTest, TheBuildSealsTheProgram) {
    EXPECT_EQ(IntegrityCheck(KELVARA_PROGRAM).outcome(), IntegrityOutcome::intact);
    // It starts in spite of what stands behind its end.
    const kelvara_test::ChildEnd end = run_child({KELVARA_PROGRAM, "skip-warnings", "no such action"});
    EXPECT_NE(end.output.find("Invalid Parameter: no such action"), std::string::npos) << end.output;
}

TEST_F(SealedProgramTest, ACopyIsIntact) {
    EXPECT_EQ(outcome(), "Intact");
}

TEST_F(SealedProgramTest, AChangedProgramSaysSo) {
    // The last byte of the content, and some digits of the seal: the program runs all the same.
    for (const std::uint64_t position : {size_ - seal_size - 1, size_ - 64, size_ - 1}) {
        flip(position);
        EXPECT_EQ(outcome(), "Modified") << position;
        flip(position);
    }
    EXPECT_EQ(outcome(), "Intact");
}

TEST_F(SealedProgramTest, AChangedByteAnywhereShows) {
    // Also where the program would not run any more.
    for (const std::uint64_t position :
         {std::uint64_t{0}, std::uint64_t{9}, size_ / 3, size_ / 2, size_ - seal_size - 1}) {
        flip(position);
        EXPECT_EQ(IntegrityCheck(folder_.path(name_)).outcome(), IntegrityOutcome::modified) << position;
        flip(position);
    }
}

TEST_F(SealedProgramTest, AProgramWithoutItsSealSaysSo) {
    flip(size_ - seal_size);
    EXPECT_EQ(outcome(), "Unsealed");
    flip(size_ - seal_size);
    std::ofstream(folder_.native(name_), std::ios::app | std::ios::binary) << "more";
    EXPECT_EQ(outcome(), "Unsealed");
    std::filesystem::resize_file(folder_.native(name_), size_ - 1);
    EXPECT_EQ(outcome(), "Unsealed");
    std::filesystem::resize_file(folder_.native(name_), size_ - seal_size);
    EXPECT_EQ(outcome(), "Unsealed");
}

TEST_F(SealedProgramTest, AProgramThatIsReplacedWhileItRunsSaysSo) {
    std::string output;
    std::thread run([&] {
        output = run_child({folder_.path(name_), "skip-warnings", "touch:" + folder_.path("started"),
                            "wait-for:" + folder_.path("replaced"), "check-again"})
                     .output;
    });
    while (!std::filesystem::exists(folder_.native("started")))
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    // A running program can be moved away, on both systems.
    std::filesystem::rename(folder_.native(name_), folder_.native("moved.exe"));
    std::filesystem::copy_file(folder_.native("moved.exe"), folder_.native(name_));
    flip(size_ / 2);
    std::ofstream(folder_.native("replaced")) << "!";
    run.join();
    EXPECT_NE(output.find("integrity: Intact\n"), std::string::npos) << output;
    EXPECT_NE(output.find("checked again: Modified\n"), std::string::npos) << output;
}

}  // namespace
}  // namespace kelvara
