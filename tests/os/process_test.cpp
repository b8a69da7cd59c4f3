#include "platform/os/process.h"

#include "platform/os/crash.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace qmp::os {
namespace {

std::filesystem::path from_utf8(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

TEST(Process, KnowsItsArgumentsAndItsPath) {
    ASSERT_GE(arguments().size(), 1u);
    EXPECT_NE(arguments()[0].find("os_tests"), std::string::npos);
    const std::optional<std::string> path = program_path();
    ASSERT_TRUE(path.has_value());
    EXPECT_TRUE(from_utf8(*path).is_absolute()) << *path;
    EXPECT_TRUE(std::filesystem::exists(from_utf8(*path))) << *path;
}

TEST(Process, NamesItsSystem) {
    EXPECT_TRUE(system_name() == "Windows" || system_name() == "Linux");
    EXPECT_EQ(system_interface_name(), system_name() == "Windows" ? "WinAPI" : "Linux API");
}

TEST(Process, GivesTheSystemsTextForAnErrorCode) {
    // "No such file or directory" and "File not found": code 2 on both systems.
    const std::string text = system_error_text(2);
    EXPECT_GT(text.size(), 5u);
    EXPECT_GT(text.back(), ' ');
    EXPECT_NE(text, system_error_text(5));
    EXPECT_FALSE(system_error_text(0x7fffffff).empty());
    EXPECT_FALSE(system_error_text(0xffffffff).empty());

    char small_buffer[8];
    const std::string_view cut = system_error_text(2, small_buffer);
    EXPECT_LE(cut.size(), sizeof small_buffer);
    EXPECT_EQ(text.compare(0, cut.size(), cut), 0);
}

TEST(Process, WritesADumpWithoutACrash) {
    const std::string path =
        (std::filesystem::temp_directory_path() /
         ("kelvara-dump-test-" + std::to_string(std::hash<std::thread::id>{}(std::this_thread::get_id())) +
          ".dmp"))
            .string();
    const DumpOutcome outcome = write_crash_dump(path.c_str(), "", nullptr);
    EXPECT_EQ(outcome.result, DumpResult::written) << system_error_text(outcome.error_code);
    EXPECT_EQ(outcome.error_code, 0u);
    EXPECT_GT(std::filesystem::file_size(path), 500u);
    std::filesystem::remove(path);
}

TEST(Process, SaysWhyItCannotCreateADump) {
    const std::string path = (std::filesystem::temp_directory_path() / "no such folder" / "x.dmp").string();
    const DumpOutcome outcome = write_crash_dump(path.c_str(), "", nullptr);
    EXPECT_EQ(outcome.result, DumpResult::cannot_create);
    EXPECT_NE(outcome.error_code, 0u);
}

}  // namespace
}  // namespace qmp::os
