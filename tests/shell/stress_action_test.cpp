// The options of the "stress" action.
#include "shell/stress_action.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "errors/exception.h"
#include "support/console.h"
#include "support/messages.h"

namespace kelvara {
namespace {

using kelvara_test::message_of;
using kelvara_test::printed_by;

StressSettings parse(std::vector<std::string> options,
                     std::span<const StressTestEntry> tests = stress_tests()) {
    options.insert(options.begin(), {"kelvara", "stress"});
    CommandLine command_line(options);
    return parse_stress_options(command_line, tests);
}

TEST(StressAction, WithoutOptionsHasTheDefaults) {
    const StressSettings settings = parse({});
    const StressSettings defaults;
    EXPECT_EQ(settings.threads, defaults.threads);
    EXPECT_EQ(settings.seconds_per_test, 120u);
    EXPECT_EQ(settings.enabled, std::vector<bool>(6, true));
    EXPECT_EQ(settings.mode, StressMode::local);
}

TEST(StressAction, TakesMemoryThreadsAndTime) {
    const StressSettings settings = parse({"-M:1.5M", "-T:3", "-D:17"});
    EXPECT_EQ(settings.memory, 1572864u);
    EXPECT_EQ(settings.threads, 3u);
    EXPECT_EQ(settings.seconds_per_test, 17u);
}

TEST(StressAction, ReadsNumbersUpToTheFirstOtherCharacter) {
    EXPECT_EQ(parse({"-T:0"}).threads, 1u);
    EXPECT_EQ(parse({"-T"}).threads, 1u);
    EXPECT_EQ(parse({"-T:8x"}).threads, 8u);
    EXPECT_EQ(parse({"-T:99999999999999999999"}).threads, ~std::uint64_t{0});
    EXPECT_EQ(parse({"-D"}).seconds_per_test, 0u);
    EXPECT_EQ(parse({"-D:-5"}).seconds_per_test, 0u);
    EXPECT_EQ(parse({"-M"}).memory, 0u);
    EXPECT_EQ(parse({"-M:99E"}).memory, 0x6ffffffffffffff9u);
    EXPECT_EQ(parse({"-M:7E"}).memory, 0x6ffffffffffffff9u);
}

TEST(StressAction, CollectsTests) {
    EXPECT_EQ(parse({"VST", "BKT", "VST"}).enabled,
              (std::vector<bool>{true, false, false, false, false, true}));
    EXPECT_EQ(parse({"N32:x"}).enabled, (std::vector<bool>{false, false, true, false, false, false}));
}

TEST(StressAction, RefusesWhatIsNoTest) {
    for (const char* name : {"vst", "C17", "", "VSTX", "VST ", "xyz:5"}) {
        EXPECT_EQ(message_of<qmp::InvalidParametersException>([&] {
                      parse({"-T:1", name});
                  }),
                  std::string("Invalid Command: ") + name);
    }
}

TEST(StressAction, SkipsWhatThisProcessorCannotRun) {
    std::vector<StressTestEntry> tests(stress_tests().begin(), stress_tests().end());
    tests[1].test = nullptr;
    std::vector<bool> enabled;
    EXPECT_EQ(printed_by([&] {
                  enabled = parse({"FFT", "N64"}, tests).enabled;
              }),
              "Algorithm FFT is not available.\n");
    EXPECT_EQ(enabled, (std::vector<bool>{false, false, false, true, false, false}));
    // Nothing is left of the choice: the default set.
    printed_by([&] { enabled = parse({"FFT"}, tests).enabled; });
    EXPECT_EQ(enabled, std::vector<bool>(6, true));
}

}  // namespace
}  // namespace kelvara
