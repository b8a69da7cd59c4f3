// The tester's menu where a processor lacks what a test needs; transcripts show the rest.
#include "stress/stress_menu.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "stress/stress_machine_fake.h"
#include "stress/stress_report.h"
#include "support/console.h"

namespace kelvara {
namespace {

using kelvara_test::FedInput;
using kelvara_test::printed_by;
using kelvara_test::small_settings;
using kelvara_test::with_test;

std::vector<StressTestEntry> without_fft() {
    std::vector<StressTestEntry> tests(stress_tests().begin(), stress_tests().end());
    tests[1].test = nullptr;
    return tests;
}

std::string edit(StressSettings& settings, const std::vector<StressTestEntry>& tests, const char* answers) {
    return printed_by([&] {
        FedInput input(answers);
        edit_stress_settings(settings, tests);
    });
}

TEST(StressMenu, ShowsWhatIsUnavailable) {
    StressSettings settings = small_settings(1, 1 << 20);
    const std::string text = edit(settings, without_fft(), "0\n");
    const std::size_t line = text.find("   7  Floating-Point FFT     : ");
    ASSERT_NE(line, std::string::npos) << text;
    EXPECT_EQ(text.substr(text.find('\n', line) - 11, 11), "Unavailable");
}

TEST(StressMenu, QuickSetsChangeUnavailableTestsToo) {
    struct Case {
        const char* answers;
        std::vector<bool> enabled;
    };
    const Case cases[] = {
        {"12\n0\n", {false, false, true, true, true, true}},
        {"13\n0\n", {false, true, false, false, true, true}},
        {"15\n14\n0\n", {true, true, true, true, true, true}},
        {"15\n7\n0\n", {false, true, false, false, false, false}},
        {"6\n8\n6\n0\n", {true, true, false, true, true, true}},
    };
    for (const Case& c : cases) {
        StressSettings settings = small_settings(1, 1 << 20);
        edit(settings, without_fft(), c.answers);
        EXPECT_EQ(settings.enabled, c.enabled) << c.answers;
    }
}

TEST(StressMenu, ChangesWhatItShows) {
    StressSettings settings = small_settings(1, 1 << 20);
    edit(settings, without_fft(), "1\n2\n0\n65537\n65536\n4\n0\n5\n3\n1\n64K\n0\n0\n");
    EXPECT_EQ(settings.mode, StressMode::global);
    EXPECT_EQ(settings.threads, 65536u);
    EXPECT_EQ(settings.seconds_per_test, 0u);
    EXPECT_FALSE(settings.stop_on_error);
    EXPECT_EQ(settings.memory, 65536u);
}

TEST(StressMenu, TakesAnswersThatMakeLittleSense) {
    struct Case {
        const char* answers;
        std::uint64_t seconds, memory;
    };
    const Case cases[] = {
        {"4\n-1\nletters\n3\n1\nletters\n0\n0\n", 0, 0},
        {"4\n1.5\n3\n1\n-1\n0\n0\n", 1, 0},
        {"4\n99999999999999999999999\n3\n1\n99999999999E\n0\n0\n", 0x7fffffffffffffff, 0x6ffffffffffffff9},
    };
    for (const Case& c : cases) {
        StressSettings settings = small_settings(1, 1 << 20);
        edit(settings, without_fft(), c.answers);
        EXPECT_EQ(settings.seconds_per_test, c.seconds) << c.answers;
        EXPECT_EQ(settings.memory, c.memory) << c.answers;
    }
}

TEST(LargeNumber, HasAUnit) {
    EXPECT_EQ(large_number(0), "0.00");
    EXPECT_EQ(large_number(999), "999.00");
    EXPECT_EQ(large_number(1234), "1.23 thousand");
    EXPECT_EQ(large_number(5.5e9), "5.50 billion");
    EXPECT_EQ(large_number(1e18), "1000000.00 trillion");
}

}  // namespace
}  // namespace kelvara
