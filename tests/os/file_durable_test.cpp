// Files that have reached the disk once they are closed: written past any window that the system keeps.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>

#include "platform/os/file.h"
#include "support/folder.h"
#include "support/random_words.h"

namespace {

using qmp::os::Durable;
using qmp::os::File;

class DurableFiles : public testing::Test {
  protected:
    std::string path(const std::string& name) const { return folder_.path(name); }
    std::string content(const std::string& name) const {
        File file;
        EXPECT_EQ(file.open(path(name)), qmp::os::no_error);
        std::uint64_t bytes = 0;
        EXPECT_EQ(file.size(bytes), qmp::os::no_error);
        std::string text(bytes, '\0');
        EXPECT_EQ(file.read(text.data(), bytes).bytes, bytes);
        return text;
    }
    static std::string random_text(std::size_t bytes) {
        kelvara_test::Random random(20);
        std::string text(bytes, '\0');
        for (char& c : text) c = static_cast<char>(random.next());
        return text;
    }
    kelvara_test::TemporaryFolder folder_;
};

TEST_F(DurableFiles, BlocksOfEverySize) {
    const std::string text = random_text(9 << 20);
    for (const Durable durable : {Durable::after_write, Durable::after_close}) {
        for (const std::size_t block : {std::size_t{4099}, (std::size_t{1} << 18) + 1, std::size_t{1048572},
                                        std::size_t{7} << 20, text.size()}) {
            File file;
            ASSERT_EQ(file.create(path("a"), durable), qmp::os::no_error);
            EXPECT_EQ(file.write("3.", 2).bytes, 2u);
            for (std::size_t at = 0; at < text.size(); at += block) {
                const std::size_t count = std::min(block, text.size() - at);
                const qmp::os::Transfer done = file.write(text.data() + at, count);
                ASSERT_EQ(done.bytes, count);
                ASSERT_EQ(done.error, qmp::os::no_error);
            }
            EXPECT_EQ(file.close(), qmp::os::no_error);
            EXPECT_TRUE(content("a") == "3." + text) << block;
        }
    }
}

TEST_F(DurableFiles, SeekingBack) {
    std::string text = random_text(5 << 20);
    File file;
    ASSERT_EQ(file.create(path("a"), Durable::after_close), qmp::os::no_error);
    EXPECT_EQ(file.write(text.data(), text.size()).bytes, text.size());
    ASSERT_EQ(file.seek(1000001), qmp::os::no_error);
    const std::string patch(3000000, 'x');
    EXPECT_EQ(file.write(patch.data(), patch.size()).bytes, patch.size());
    char c = 0;
    ASSERT_EQ(file.seek(4000001), qmp::os::no_error);
    EXPECT_EQ(file.read(&c, 1).bytes, 1u);
    EXPECT_EQ(c, text[4000001]);
    EXPECT_EQ(file.close(), qmp::os::no_error);
    text.replace(1000001, patch.size(), patch);
    EXPECT_TRUE(content("a") == text);
}

TEST_F(DurableFiles, MovedAndOpenedAnew) {
    File file;
    ASSERT_EQ(file.create(path("a"), Durable::after_close), qmp::os::no_error);
    File other(std::move(file));
    EXPECT_EQ(other.write("abc", 3).bytes, 3u);
    file = std::move(other);
    EXPECT_EQ(file.write("def", 3).bytes, 3u);
    // Closes the first.
    ASSERT_EQ(file.create(path("b")), qmp::os::no_error);
    EXPECT_EQ(file.write("ghi", 3).bytes, 3u);
    EXPECT_EQ(file.close(), qmp::os::no_error);
    EXPECT_EQ(file.close(), qmp::os::no_error);
    EXPECT_EQ(content("a"), "abcdef");
    EXPECT_EQ(content("b"), "ghi");
}

// Devices have nothing to wait for, and a full one says so at once.
TEST_F(DurableFiles, Devices) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no such devices";
    const std::string text(3 << 20, 'x');
    File file;
    ASSERT_EQ(file.create("/dev/null", Durable::after_close), qmp::os::no_error);
    EXPECT_EQ(file.write(text.data(), text.size()).bytes, text.size());
    EXPECT_EQ(file.close(), qmp::os::no_error);
    ASSERT_EQ(file.create("/dev/full", Durable::after_close), qmp::os::no_error);
    const qmp::os::Transfer done = file.write(text.data(), text.size());
    EXPECT_EQ(done.bytes, 0u);
    EXPECT_EQ(done.error, qmp::os::disk_full);
    EXPECT_EQ(file.close(), qmp::os::no_error);
}

}  // namespace
