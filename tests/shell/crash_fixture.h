// A driver that crashes in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/folder.h"
#include "support/sanitized.h"

namespace kelvara_test {

class CrashFixture : public testing::Test {
  protected:
    void SetUp() override {
        // A sanitizer brings handlers, stacks and reports of its own.
        if (sanitized) GTEST_SKIP() << "a sanitizer reports crashes itself";
    }

    ChildEnd crash(const std::string& action, ChildSettings settings = {}) const {
        settings.folder = folder_.path();
        return run_child({KELVARA_SHELL_DRIVER, "skip-warnings", action}, settings);
    }

    std::vector<std::filesystem::path> dump_files() const {
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.native("")))
            files.push_back(entry.path());
        return files;
    }

    // The content of the only file in the folder.
    std::string dump() const {
        const std::vector<std::filesystem::path> files = dump_files();
        EXPECT_EQ(files.size(), 1u);
        if (files.empty()) return {};
        std::ifstream file(files.front(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const TemporaryFolder folder_;
};

}  // namespace kelvara_test
