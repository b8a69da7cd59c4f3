#include "platform/toolchain.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(Toolchain, NamesTheCompiler) {
    EXPECT_TRUE(compiler_name() == "GCC" || compiler_name() == "Clang");
    const std::string version = compiler_version();
    EXPECT_NE(version.find('.'), std::string::npos);
    EXPECT_EQ(version.find_first_not_of("0123456789"), version.find('.'));
}

TEST(Toolchain, NamesTheDay) {
    // "Nov 20 2026"
    const std::string date(compile_date());
    ASSERT_EQ(date.size(), 11u);
    EXPECT_NE(std::string("JanFebMarAprMayJunJulAugSepOctNovDec").find(date.substr(0, 3)), std::string::npos);
    EXPECT_GE(std::stoi(date.substr(4, 2)), 1);
    EXPECT_LE(std::stoi(date.substr(4, 2)), 31);
    EXPECT_GE(std::stoi(date.substr(7)), 1970);
}

}  // namespace
}  // namespace kelvara
