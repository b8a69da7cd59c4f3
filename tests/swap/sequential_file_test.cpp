#include "swap/sequential_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "errors/file_exception.h"
#include "support/fatal.h"
#include "support/folder.h"
#include "support/standard_streams.h"

namespace {

using qmp::FileIO::SequentialFile;

class SequentialFiles : public testing::Test {
  protected:
    std::string path(const std::string& name) const { return folder_.path(name); }
    std::string content(const std::string& name) const {
        std::ifstream file(folder_.native(name), std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }
    void put(const std::string& name, const std::string& text) const {
        std::ofstream(folder_.native(name), std::ios::binary) << text;
    }
    kelvara_test::TemporaryFolder folder_;
};

// The failure's message; the exception must carry the path and a code.
template <typename Function>
std::string failure_of(Function&& function, const std::string& path, std::uint32_t code) {
    try {
        function();
    } catch (const qmp::FileIO::FileException& exception) {
        EXPECT_EQ(exception.path(), path);
        EXPECT_EQ(exception.error_code(), code);
        return exception.message();
    }
    return "nothing was thrown";
}

TEST_F(SequentialFiles, WriteSeekAndRead) {
    SequentialFile file;
    EXPECT_FALSE(file.is_open());
    file.create(path("a.txt"));
    EXPECT_TRUE(file.is_open());
    EXPECT_EQ(file.path(), path("a.txt"));
    EXPECT_EQ(file.write("0123456789", 10), 10u);
    EXPECT_EQ(file.size(), 10u);
    file.seek(3);
    char buffer[20] = {};
    EXPECT_EQ(file.read(buffer, 4), 4u);
    EXPECT_EQ(std::string(buffer), "3456");
    EXPECT_EQ(file.read(buffer, 20), 3u);
    EXPECT_EQ(file.last_error(), 0u);
    EXPECT_EQ(file.read(buffer, 20), 0u);
    file.seek(20);
    EXPECT_EQ(file.write("x", 1), 1u);
    EXPECT_EQ(file.size(), 21u);
    file.close();
    EXPECT_FALSE(file.is_open());
    EXPECT_EQ(content("a.txt"), std::string("0123456789") + std::string(10, '\0') + "x");
}

TEST_F(SequentialFiles, CreateEmptiesAnExistingFile) {
    put("a.txt", "old content");
    SequentialFile file;
    file.create(path("a.txt"));
    EXPECT_EQ(file.size(), 0u);
    file.write("new", 3);
    file.create(path("b.txt"));  // closes the first
    EXPECT_EQ(content("a.txt"), "new");
}

TEST_F(SequentialFiles, NamesAreUtf8) {
    SequentialFile file;
    file.create(path("\xcf\x80\xe2\x82\xac.txt"));
    file.write("x", 1);
    file.close();
    EXPECT_TRUE(std::filesystem::exists(folder_.native(u8"\u03c0\u20ac.txt")));
    EXPECT_EQ(qmp::FileIO::file_size(path("\xcf\x80\xe2\x82\xac.txt")), 1u);
}

TEST_F(SequentialFiles, OpenedFilesAreOnlyRead) {
    put("a.txt", "abc");
    SequentialFile file;
    file.open(path("a.txt"));
    EXPECT_EQ(file.size(), 3u);
    EXPECT_EQ(file.write("x", 1), 0u);
    EXPECT_NE(file.last_error(), 0u);
    SequentialFile second;
    second.open(path("a.txt"));  // readers share
    char c = 0;
    EXPECT_EQ(second.read(&c, 1), 1u);
    EXPECT_EQ(c, 'a');
}

TEST_F(SequentialFiles, FailuresCarryPathAndCode) {
    SequentialFile file;
    EXPECT_EQ(failure_of([&] { file.open(path("none.txt")); }, path("none.txt"), 2), "Unable to open file.");
    EXPECT_FALSE(file.is_open());
    // A folder is no file.
    std::filesystem::create_directory(folder_.native("folder"));
    EXPECT_EQ(failure_of([&] { file.create(path("folder")); }, path("folder"), 5), "Unable to create file.");
    EXPECT_EQ(failure_of([&] { file.open(path("folder")); }, path("folder"), 5), "Unable to open file.");
}

TEST_F(SequentialFiles, ARetryWithoutKeyboardThrows) {
    const kelvara_test::FedInput no_keyboard("");
    SequentialFile file;
    EXPECT_EQ(failure_of([&] { file.open(path("none.txt"), true); }, path("none.txt"), 2),
              "Unable to open file.");
    std::filesystem::create_directory(folder_.native("folder"));
    EXPECT_EQ(failure_of([&] { file.create(path("folder"), true); }, path("folder"), 5),
              "Unable to create file.");
}

TEST_F(SequentialFiles, AFileBeingWrittenIsNobodyElses) {
    SequentialFile writer;
    writer.create(path("a.txt"));
    writer.write("keep", 4);
    SequentialFile other;
    EXPECT_EQ(failure_of([&] { other.open(path("a.txt")); }, path("a.txt"), 32), "Unable to open file.");
    EXPECT_EQ(failure_of([&] { other.create(path("a.txt")); }, path("a.txt"), 32), "Unable to create file.");
    writer.close();
    EXPECT_EQ(content("a.txt"), "keep");
    other.open(path("a.txt"));
    EXPECT_EQ(other.size(), 4u);
}

TEST_F(SequentialFiles, AClosedFileRefusesAndReadsNothing) {
    SequentialFile file;
    char c;
    EXPECT_EQ(file.read(&c, 1), 0u);
    EXPECT_EQ(file.last_error(), 6u);
    EXPECT_EQ(file.write("x", 1), 0u);
    EXPECT_EQ(file.last_error(), 6u);
    EXPECT_EQ(failure_of([&] { file.seek(0); }, "", 6), "Unable to move file pointer.");
    file.close();
}

TEST_F(SequentialFiles, MovesItsFile) {
    SequentialFile a;
    a.create(path("a.txt"));
    SequentialFile b(std::move(a));
    EXPECT_FALSE(a.is_open());
    EXPECT_EQ(b.write("moved", 5), 5u);
    a.create(path("b.txt"));
    a = std::move(b);
    EXPECT_EQ(a.path(), path("a.txt"));
    EXPECT_EQ(a.size(), 5u);
    EXPECT_EQ(content("b.txt"), "");
}

TEST_F(SequentialFiles, PathCheckTellsWhetherAFileCanBeCreated) {
    EXPECT_TRUE(qmp::FileIO::path_check(path("")));
    EXPECT_TRUE(qmp::FileIO::path_check(folder_.path()));
    EXPECT_TRUE(std::filesystem::is_empty(folder_.native("")));
    EXPECT_FALSE(qmp::FileIO::path_check(path("missing")));
}

TEST_F(SequentialFiles, TrailingSlash) {
    EXPECT_EQ(qmp::FileIO::with_trailing_slash("a"), "a/");
    EXPECT_EQ(qmp::FileIO::with_trailing_slash("a/"), "a/");
    EXPECT_EQ(qmp::FileIO::with_trailing_slash("a\\"), "a\\");
    EXPECT_EQ(qmp::FileIO::with_trailing_slash(""), "/");
}

TEST_F(SequentialFiles, RenameReplacesItsTarget) {
    put("a.txt", "new");
    put("b.txt", "old");
    qmp::FileIO::rename_with_retries(path("a.txt"), path("b.txt"));
    EXPECT_EQ(content("b.txt"), "new");
    EXPECT_FALSE(std::filesystem::exists(folder_.native("a.txt")));
    qmp::FileIO::rename_with_retries(path("b.txt"), path("c.txt"));
    EXPECT_EQ(content("c.txt"), "new");
}

TEST_F(SequentialFiles, ARenameThatCannotSucceedThrowsWithoutKeyboard) {
    const kelvara_test::FedInput no_keyboard("");
    EXPECT_EQ(failure_of([&] { qmp::FileIO::rename_with_retries(path("none.txt"), path("b.txt")); },
                         path("b.txt"), 2),
              "Unable to rename file.");
}

TEST_F(SequentialFiles, SizeByPath) {
    put("a.txt", std::string(12345, 'x'));
    EXPECT_EQ(qmp::FileIO::file_size(path("a.txt")), 12345u);
}

#if GTEST_HAS_DEATH_TEST
TEST_F(SequentialFiles, TheSizeOfAMissingFileEndsTheProgramDeathTest) {
    EXPECT_FATAL(qmp::FileIO::file_size(path("none.txt")), "Path does not exist.");
}

TEST_F(SequentialFiles, AFullDiskIsAShortWriteWithItsCode) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
    SequentialFile file;
    file.create("/dev/full");
    EXPECT_EQ(file.write("x", 1), 0u);
    EXPECT_EQ(file.last_error(), 112u);
}
#endif

}  // namespace
