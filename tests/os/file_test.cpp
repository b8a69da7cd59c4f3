// What the seam promises of files, on every system.
#include "platform/os/file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/folder.h"

namespace {

using qmp::os::File;

class OsFiles : public testing::Test {
  protected:
    std::string path(const std::string& name) const { return folder_.path(name); }
    void put(const std::string& name, const std::string& text) const {
        File file;
        ASSERT_EQ(file.create(path(name)), qmp::os::no_error);
        ASSERT_EQ(file.write(text.data(), text.size()).bytes, text.size());
    }
    std::string content(const std::string& name) const {
        File file;
        EXPECT_EQ(file.open(path(name)), qmp::os::no_error);
        std::string text(1000, '\0');
        const qmp::os::Transfer done = file.read(text.data(), text.size());
        EXPECT_EQ(done.error, qmp::os::no_error);
        text.resize(done.bytes);
        return text;
    }
    kelvara_test::TemporaryFolder folder_;
};

TEST_F(OsFiles, TransfersMoveThePosition) {
    File file;
    ASSERT_EQ(file.create(path("a")), qmp::os::no_error);
    EXPECT_EQ(file.write("abcdef", 6).bytes, 6u);
    EXPECT_EQ(file.write("ghi", 3).error, qmp::os::no_error);
    ASSERT_EQ(file.seek(4), qmp::os::no_error);
    char buffer[8] = {};
    EXPECT_EQ(file.read(buffer, 2).bytes, 2u);
    EXPECT_EQ(std::string(buffer), "ef");
    const qmp::os::Transfer rest = file.read(buffer, 8);
    EXPECT_EQ(rest.bytes, 3u);
    EXPECT_EQ(rest.error, qmp::os::no_error);
    std::uint64_t bytes = 0;
    EXPECT_EQ(file.size(bytes), qmp::os::no_error);
    EXPECT_EQ(bytes, 9u);
    EXPECT_EQ(file.write(nullptr, 0).error, qmp::os::no_error);
    EXPECT_EQ(file.read(nullptr, 0).error, qmp::os::no_error);
}

TEST_F(OsFiles, OffsetsBeyondTheEndAndBeyondTheSystem) {
    File file;
    ASSERT_EQ(file.create(path("a")), qmp::os::no_error);
    const std::uint64_t far_away = std::uint64_t{5} << 30;
    EXPECT_EQ(file.seek(far_away), qmp::os::no_error);
    std::uint64_t bytes = 1;
    EXPECT_EQ(file.size(bytes), qmp::os::no_error);
    EXPECT_EQ(bytes, 0u);
    EXPECT_EQ(file.seek(~std::uint64_t{0}), qmp::os::invalid_parameter);
}

TEST_F(OsFiles, Codes) {
    File file;
    EXPECT_EQ(file.open(path("none")), qmp::os::file_not_found);
    std::uint64_t bytes = 0;
    EXPECT_EQ(qmp::os::file_size(path("none"), bytes), qmp::os::file_not_found);
    EXPECT_EQ(qmp::os::remove_file(path("none")), qmp::os::file_not_found);
    EXPECT_EQ(qmp::os::rename_file(path("none"), path("b")), qmp::os::file_not_found);
    // A missing folder is told apart on some systems only.
    const qmp::os::ErrorCode missing_folder = file.create(path("none/a"));
    EXPECT_TRUE(missing_folder == qmp::os::file_not_found || missing_folder == qmp::os::path_not_found);
    EXPECT_FALSE(file.is_open());
    std::filesystem::create_directory(folder_.native("folder"));
    EXPECT_EQ(file.create(path("folder")), qmp::os::access_denied);
    EXPECT_EQ(file.open(path("folder")), qmp::os::access_denied);
    EXPECT_NE(qmp::os::remove_file(path("folder")), qmp::os::no_error);
}

TEST_F(OsFiles, SharingIsRefusedWhileAFileIsWritten) {
    put("a", "keep");
    File reader;
    File second_reader;
    File writer;
    ASSERT_EQ(reader.open(path("a")), qmp::os::no_error);
    EXPECT_EQ(second_reader.open(path("a")), qmp::os::no_error);
    EXPECT_EQ(writer.create(path("a")), qmp::os::sharing_violation);
    reader.close();
    second_reader.close();
    EXPECT_EQ(content("a"), "keep");
    ASSERT_EQ(writer.create(path("a")), qmp::os::no_error);
    EXPECT_EQ(reader.open(path("a")), qmp::os::sharing_violation);
    EXPECT_EQ(reader.create(path("a")), qmp::os::sharing_violation);
}

TEST_F(OsFiles, AReaderCannotWrite) {
    put("a", "keep");
    File file;
    ASSERT_EQ(file.open(path("a")), qmp::os::no_error);
    const qmp::os::Transfer done = file.write("x", 1);
    EXPECT_EQ(done.bytes, 0u);
    EXPECT_NE(done.error, qmp::os::no_error);
    file.close();
    EXPECT_EQ(content("a"), "keep");
}

TEST_F(OsFiles, ARenameOntoAFileReplacesItOrLeavesBothAlone) {
    put("a", "new");
    put("b", "old");
    const qmp::os::ErrorCode error = qmp::os::rename_file(path("a"), path("b"));
    if (error == qmp::os::no_error) {
        EXPECT_EQ(content("b"), "new");
        EXPECT_FALSE(std::filesystem::exists(folder_.native("a")));
    } else {
        EXPECT_TRUE(error == qmp::os::file_exists || error == qmp::os::already_exists) << error;
        EXPECT_EQ(content("a"), "new");
        EXPECT_EQ(content("b"), "old");
    }
    EXPECT_EQ(qmp::os::remove_file(path("b")), qmp::os::no_error);
}

TEST_F(OsFiles, NamesAreUtf8) {
    const std::string name = "\xc3\xa9\xce\xb3\xf0\x9d\x9b\xbe";
    put(name, "x");
    EXPECT_TRUE(std::filesystem::exists(folder_.native(u8"\u00e9\u03b3\U0001d6fe")));
    std::uint64_t bytes = 0;
    EXPECT_EQ(qmp::os::file_size(path(name), bytes), qmp::os::no_error);
    EXPECT_EQ(bytes, 1u);
}

TEST_F(OsFiles, Directories) {
    put("a", "x");
    EXPECT_TRUE(qmp::os::directory_exists(folder_.path()));
    EXPECT_TRUE(qmp::os::directory_exists(folder_.path() + "/"));
    EXPECT_FALSE(qmp::os::directory_exists(path("a")));
    EXPECT_FALSE(qmp::os::directory_exists(path("none")));
}

TEST_F(OsFiles, FoldersAreMadeOnce) {
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(qmp::os::create_directory(path("folder")), qmp::os::no_error);
        EXPECT_TRUE(qmp::os::directory_exists(path("folder")));
    }
    put("a", "");
    const qmp::os::ErrorCode in_the_way = qmp::os::create_directory(path("a"));
    EXPECT_TRUE(in_the_way == qmp::os::file_exists || in_the_way == qmp::os::already_exists) << in_the_way;
    EXPECT_NE(qmp::os::create_directory(path("none/folder")), qmp::os::no_error);
}

TEST_F(OsFiles, ClosingTwiceAndMoving) {
    File a;
    EXPECT_EQ(a.close(), qmp::os::no_error);
    ASSERT_EQ(a.create(path("a")), qmp::os::no_error);
    File b(std::move(a));
    EXPECT_FALSE(a.is_open());
    EXPECT_EQ(b.write("x", 1).bytes, 1u);
    a = std::move(b);
    EXPECT_FALSE(b.is_open());
    EXPECT_EQ(a.write("y", 1).bytes, 1u);
    EXPECT_EQ(a.close(), qmp::os::no_error);
    EXPECT_EQ(a.close(), qmp::os::no_error);
    EXPECT_EQ(content("a"), "xy");
}

TEST_F(OsFiles, AFullDiskIsReportedWithItsCode) {
    File file;
    if (file.create("/dev/full") != qmp::os::no_error) GTEST_SKIP() << "no device that is always full";
    const std::vector<char> bytes(100000, 'x');
    const qmp::os::Transfer done = file.write(bytes.data(), bytes.size());
    EXPECT_LT(done.bytes, bytes.size());
    EXPECT_EQ(done.error, qmp::os::disk_full);
}

}  // namespace
