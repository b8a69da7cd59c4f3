// Tests of kernels once per instruction-set level.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <string>

#include "multiply/instruction_levels.h"

namespace kelvara_test {

// A test that runs on one level, and is shown as skipped where the machine does not run it. An emulator
// runs those of the levels that few machines have, chosen by their names (tests/emulator).
class LevelTest : public testing::TestWithParam<std::size_t> {
  protected:
    qmp::InstructionLevel level() const { return static_cast<qmp::InstructionLevel>(GetParam()); }

    void SetUp() override {
        if (!qmp::supported(level())) GTEST_SKIP() << qmp::name_of(level()) << " is not supported here";
        qmp::force_level(qmp::name_of(level()));
    }
    void TearDown() override { qmp::force_level(""); }
};

inline std::string level_test_name(const testing::TestParamInfo<std::size_t>& info) {
    std::string name;
    for (const char* p = qmp::name_of(static_cast<qmp::InstructionLevel>(info.param)); *p; ++p) {
        if (std::isalnum(static_cast<unsigned char>(*p))) name += *p;
    }
    return name;
}

// "EveryLevel/Suite.Test/FMA4" and so on, for a suite derived from LevelTest.
#define INSTANTIATE_EVERY_LEVEL(Suite)                                                     \
    INSTANTIATE_TEST_SUITE_P(EveryLevel, Suite,                                            \
                             testing::Range(std::size_t{0}, qmp::instruction_level_count), \
                             kelvara_test::level_test_name)

// Calls body(level) with each level that this machine runs being the current one.
template <typename Body>
void for_every_level(Body body) {
    for (std::size_t i = 0; i < qmp::instruction_level_count; ++i) {
        const auto level = static_cast<qmp::InstructionLevel>(i);
        if (!qmp::supported(level)) continue;
        SCOPED_TRACE(qmp::name_of(level));
        qmp::force_level(qmp::name_of(level));
        body(level);
    }
    qmp::force_level("");
}

}  // namespace kelvara_test
