// Tests of the ways in which the program ends. Where the system has no death tests these expand to
// nothing; guard the whole test with GTEST_HAS_DEATH_TEST.
#pragma once

#include <gtest/gtest.h>

#if GTEST_HAS_DEATH_TEST
namespace kelvara_test {

// A death test matches standard error; the program speaks on standard output.
inline void output_to_error() {
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

}  // namespace kelvara_test

// The statement ends the program with exit code 1 after printing a match of `regex`.
#define EXPECT_FATAL(statement, regex)       \
    EXPECT_EXIT(                             \
        {                                    \
            kelvara_test::output_to_error(); \
            statement;                       \
        },                                   \
        testing::ExitedWithCode(1), regex)

// The statement crashes after printing a match of `regex`.
#define EXPECT_CRASH(statement, regex)       \
    EXPECT_DEATH(                            \
        {                                    \
            kelvara_test::output_to_error(); \
            statement;                       \
        },                                   \
        regex)
#endif
