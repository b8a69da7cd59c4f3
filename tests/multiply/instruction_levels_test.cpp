#include "multiply/instruction_levels.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "errors/exception.h"

namespace {

using qmp::InstructionLevel;

TEST(InstructionLevels, TheListIsBestFirstAndEndsWithScalar) {
    ASSERT_EQ(qmp::instruction_level_count, 5u);
    EXPECT_STREQ(qmp::name_of(InstructionLevel::avx512), "AVX-512");
    EXPECT_STREQ(qmp::name_of(InstructionLevel::avx2), "AVX2");
    EXPECT_STREQ(qmp::name_of(InstructionLevel::fma4), "FMA4");
    EXPECT_STREQ(qmp::name_of(InstructionLevel::sse2), "SSE2");
    EXPECT_STREQ(qmp::name_of(InstructionLevel::scalar), "scalar");
    EXPECT_EQ(static_cast<std::size_t>(InstructionLevel::avx512), 0u);
    EXPECT_EQ(static_cast<std::size_t>(InstructionLevel::scalar), qmp::instruction_level_count - 1);
}

TEST(InstructionLevels, TheBestSupportedOneRuns) {
    EXPECT_TRUE(qmp::supported(InstructionLevel::sse2));
    EXPECT_TRUE(qmp::supported(InstructionLevel::scalar));
    std::size_t best = 0;
    while (!qmp::supported(static_cast<InstructionLevel>(best))) ++best;
    EXPECT_EQ(static_cast<std::size_t>(qmp::current_level()), best);

    qmp::force_level("scalar");
    EXPECT_EQ(qmp::current_level(), InstructionLevel::scalar);
    qmp::force_level("");
    EXPECT_EQ(static_cast<std::size_t>(qmp::current_level()), best);
}

TEST(InstructionLevels, ForcingAnUnknownLevelFails) {
    const InstructionLevel before = qmp::current_level();
    try {
        qmp::force_level("AVX-9000");
        FAIL();
    } catch (const qmp::InvalidParametersException& e) {
        EXPECT_EQ(e.function(), "qmp::force_level()");
        EXPECT_EQ(e.message(), "No such level: AVX-9000");
    }
    EXPECT_EQ(qmp::current_level(), before);
}

TEST(InstructionLevels, ForcingAnUnsupportedLevelFails) {
    for (std::size_t i = 0; i < qmp::instruction_level_count; ++i) {
        const auto level = static_cast<InstructionLevel>(i);
        const std::string name = qmp::name_of(level);
        if (qmp::supported(level)) {
            qmp::force_level(name);
            EXPECT_EQ(qmp::current_level(), level);
            continue;
        }
        try {
            qmp::force_level(name);
            ADD_FAILURE() << name;
        } catch (const qmp::InvalidParametersException& e) {
            EXPECT_EQ(e.message(), "This processor does not run " + name + ".");
        }
    }
    qmp::force_level("");
}

}  // namespace
