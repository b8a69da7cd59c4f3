#include "support/console.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <random>

namespace kelvara_test {

CapturedOutput::CapturedOutput() {
    testing::internal::CaptureStdout();
}

CapturedOutput::~CapturedOutput() {
    if (!taken_) testing::internal::GetCapturedStdout();
}

std::string CapturedOutput::text() {
    taken_ = true;
    std::string text = testing::internal::GetCapturedStdout();
    std::erase(text, '\r');
    return text;
}

void type_lines(const std::string& lines) {
    static const std::string path =
        testing::TempDir() + "typed_" + std::to_string(std::random_device()()) + ".txt";
    std::ofstream(path, std::ios::binary) << lines;
    ASSERT_NE(std::freopen(path.c_str(), "rb", stdin), nullptr);
}

}  // namespace kelvara_test
