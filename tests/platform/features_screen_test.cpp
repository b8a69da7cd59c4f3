#include "platform/features_screen.h"

#include <gtest/gtest.h>

#include <string>

#include "support/console.h"

namespace {

using kelvara_test::printed_by;
using qmp::ProcessorFeatures;

// Every second feature, in the order of the screen, so that neighbours that were swapped show.
ProcessorFeatures every_second_feature() {
    ProcessorFeatures features;
    features.amd = true;
    features.os_64bit = true;
    features.os_avx512 = true;
    features.x64 = features.rdrand = features.bmi1 = features.adx = features.prefetchw = true;
    features.sse = features.sse3 = features.sse4a = features.sse42 = features.sha = true;
    features.xop = features.fma4 = true;
    features.avx512f = features.avx512pf = features.avx512vl = features.avx512dq = features.avx512vbmi = true;
    return features;
}

constexpr const char* screen_of_every_second =
    "CPU Vendor:\n"
    "    AMD         = Yes\n"
    "    Intel       = No\n"
    "OS Features:\n"
    "  * 64-bit      = Yes\n"
    "  * OS AVX      = No\n"
    "  * OS AVX512   = Yes\n"
    "Hardware Features:\n"
    "    MMX         = No\n"
    "  * x64         = Yes\n"
    "  * ABM         = No\n"
    "    RDRAND      = Yes\n"
    "    RDSEED      = No\n"
    "    BMI1        = Yes\n"
    "  * BMI2        = No\n"
    "  * ADX         = Yes\n"
    "    MPX         = No\n"
    "    PREFETCHW   = Yes\n"
    "    PREFETCHWT1 = No\n"
    "SIMD: 128-bit\n"
    "  * SSE         = Yes\n"
    "  * SSE2        = No\n"
    "  * SSE3        = Yes\n"
    "  * SSSE3       = No\n"
    "    SSE4a       = Yes\n"
    "  * SSE4.1      = No\n"
    "  * SSE4.2      = Yes\n"
    "    AES-NI      = No\n"
    "    SHA         = Yes\n"
    "SIMD: 256-bit\n"
    "  * AVX         = No\n"
    "  * XOP         = Yes\n"
    "  * FMA3        = No\n"
    "  * FMA4        = Yes\n"
    "  * AVX2        = No\n"
    "SIMD: 512-bit\n"
    "  * AVX512-F    = Yes\n"
    "    AVX512-CD   = No\n"
    "    AVX512-PF   = Yes\n"
    "    AVX512-ER   = No\n"
    "  * AVX512-VL   = Yes\n"
    "  * AVX512-BW   = No\n"
    "  * AVX512-DQ   = Yes\n"
    "  * AVX512-IFMA = No\n"
    "  * AVX512-VBMI = Yes\n";

TEST(FeaturesScreen, ListsEveryFeature) {
    EXPECT_EQ(printed_by([] { qmp::print_features(every_second_feature()); }), screen_of_every_second);
}

bool all_set_alike(const std::string& screen, const std::string& value) {
    std::size_t lines = 0;
    for (std::size_t at = screen.find(" = "); at != std::string::npos; at = screen.find(" = ", at + 1)) {
        if (screen.substr(at + 3, screen.find('\n', at) - at - 3) != value) return false;
        ++lines;
    }
    return lines == 39;
}

// A processor that has none of the leaves: the screen says so instead of failing.
TEST(FeaturesScreen, WithoutCpuidLeavesEverythingButTheSystemsWidthIsNo) {
    const ProcessorFeatures none = qmp::features_of({});
    const std::string screen = printed_by([&] { qmp::print_features(none); });
    EXPECT_NE(screen.find("  * 64-bit      = Yes\n"), std::string::npos);
    ProcessorFeatures narrow = none;
    narrow.os_64bit = false;
    EXPECT_TRUE(all_set_alike(printed_by([&] { qmp::print_features(narrow); }), "No"));
}

TEST(FeaturesScreen, OfThisProcessorShowsItsOwn) {
    const std::string screen = printed_by([] { qmp::print_features(); });
    const ProcessorFeatures own = qmp::detect_features();
    EXPECT_EQ(screen, printed_by([&] { qmp::print_features(own); }));
    EXPECT_NE(screen.find("  * x64         = Yes\n"), std::string::npos);
    EXPECT_NE(screen.find("  * SSE2        = Yes\n"), std::string::npos);
    EXPECT_EQ(screen.find("  * AVX2        = Yes\n") != std::string::npos, own.avx2);
}

}  // namespace
