// Tests of the floating-point convolutions once per instruction set.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <string>

#include "multiply/fft/levels.h"

namespace kelvara_test {

// A test that runs on one level, and is shown as skipped where the machine does not run it.
class FftLevelTest : public testing::TestWithParam<std::size_t> {
  protected:
    void SetUp() override {
        if (!qmp::fft::level_supported(GetParam())) {
            GTEST_SKIP() << qmp::fft::level_name(GetParam()) << " is not supported here";
        }
        qmp::fft::force_level(qmp::fft::level_name(GetParam()));
    }
    void TearDown() override { qmp::fft::force_level(""); }
};

inline std::string fft_level_name(const testing::TestParamInfo<std::size_t>& info) {
    std::string name;
    for (const char* p = qmp::fft::level_name(info.param); *p; ++p) {
        if (std::isalnum(static_cast<unsigned char>(*p))) name += *p;
    }
    return name;
}

#define INSTANTIATE_FFT_LEVELS(Suite)                                                                \
    INSTANTIATE_TEST_SUITE_P(Levels, Suite, testing::Range(std::size_t{0}, qmp::fft::level_count()), \
                             kelvara_test::fft_level_name)

}  // namespace kelvara_test
