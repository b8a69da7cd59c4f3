// Files for the tests of digit files.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#include "errors/exception.h"
#include "errors/file_exception.h"
#include "support/folder.h"

namespace kelvara_test {

// A file in a folder of its own. On some systems nobody else can look at it while a writer has it open.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& name = "digits.txt") : name_(name) {}
    TemporaryFile(const std::string& name, const std::string& content) : name_(name) {
        std::ofstream(folder_.native(name_), std::ios::binary) << content;
    }

    std::string path() const { return folder_.path(name_); }
    std::string content() const {
        std::ifstream file(folder_.native(name_), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    // False when the system keeps open files from being cut.
    bool cut(std::uint64_t bytes) const {
        std::error_code error;
        std::filesystem::resize_file(folder_.native(name_), bytes, error);
        return !error;
    }
    std::string missing() const { return folder_.path("missing/digits.txt"); }

  private:
    TemporaryFolder folder_;
    std::string name_;
};

// The statement throws a FileException with these fields.
template <typename Statement>
void expect_file_exception(Statement statement, const std::string& function, const std::string& message,
                           const std::string& path) {
    try {
        statement();
        FAIL() << "nothing thrown";
    } catch (const qmp::FileIO::FileException& exception) {
        EXPECT_EQ(exception.function(), function);
        EXPECT_EQ(exception.message(), message);
        EXPECT_EQ(exception.path(), path);
    }
}

template <typename Statement>
void expect_string_exception(Statement statement, const std::string& function, const std::string& message) {
    try {
        statement();
        FAIL() << "nothing thrown";
    } catch (const qmp::StringException& exception) {
        EXPECT_EQ(exception.function(), function);
        EXPECT_EQ(exception.message(), message);
    }
}

}  // namespace kelvara_test
