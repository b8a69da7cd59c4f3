// Digits of pi from here and there.
#include "constants/bbp/extractor.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "constants/bbp/menu.h"
#include "constants/bbp/report.h"
#include "errors/exception.h"
#include "radix/recording.h"
#include "support/console.h"
#include "support/levels.h"
#include "support/machine.h"
#include "support/sanitized.h"

namespace kelvara::bbp {
namespace {

using kelvara_test::FakeMachine;
using kelvara_test::FedInput;
using kelvara_test::printed_by;

// The first 1400 behind the point, computed from arctangents.
std::string leading_digits() {
    std::ifstream file(KELVARA_TEST_DATA "/pi_hexadecimal.txt");
    std::string digits, line;
    while (file >> line) digits += line;
    EXPECT_EQ(digits.size(), 1400u);
    return digits;
}

Settings settings_of(Formula formula, std::uint64_t offset, std::uint64_t digits = 32,
                     std::uint64_t threads = 1) {
    Settings settings;
    settings.formula = formula;
    settings.offset = offset;
    settings.digits = digits;
    settings.threads = threads;
    settings.pin_threads = false;
    return settings;
}

// Those that should be right.
std::string extracted(const Settings& settings) {
    qmp::SilentProgress progress;
    FakeMachine machine;
    const qmp::CoreTable cores(machine.groups);
    const std::string digits = extract_digits(settings, progress, cores, machine);
    EXPECT_EQ(digits.size(), settings.precision_digits());
    return digits.substr(0, settings.digits);
}

constexpr Formula formulas[] = {Formula::plouffe, Formula::bellard};

TEST(BbpExtractor, TheFirstDigits) {
    const std::string digits = leading_digits();
    for (const Formula formula : formulas) {
        for (const std::uint64_t offset : {0, 1, 2, 7, 39, 1000}) {
            EXPECT_EQ(extracted(settings_of(formula, offset)), digits.substr(offset, 32)) << offset;
        }
    }
    EXPECT_EQ(extracted(settings_of(Formula::plouffe, 0)), "243F6A8885A308D313198A2E03707344");
}

TEST(BbpExtractor, AnyNumberOfDigits) {
    const std::string digits = leading_digits();
    for (const Formula formula : formulas) {
        for (const std::uint64_t n : {8, 9, 15, 16, 17, 63, 64, 1000}) {
            EXPECT_EQ(extracted(settings_of(formula, 100, n)), digits.substr(100, n)) << n;
        }
    }
}

TEST(BbpExtractor, FarAway) {
    const std::uint64_t offset = kelvara_test::sanitized ? 100000 : 1000000;
    const std::string plouffe = extracted(settings_of(Formula::plouffe, offset, 48, 2));
    const std::string bellard = extracted(settings_of(Formula::bellard, offset, 48, 3));
    EXPECT_EQ(plouffe, bellard);
    if (offset == 1000000) {
        EXPECT_EQ(plouffe, "6C65E52CB459350050E4BB178F4C67A0FCF7BF27206290FB");
    }
}

TEST(BbpExtractor, FormulasAgree) {
    for (const std::uint64_t offset : {2049, 8191, 31415}) {
        EXPECT_EQ(extracted(settings_of(Formula::plouffe, offset)),
                  extracted(settings_of(Formula::bellard, offset)));
    }
}

TEST(BbpExtractor, ThreadsChangeNothing) {
    for (const Formula formula : formulas) {
        Settings settings = settings_of(formula, formula == Formula::plouffe ? 65000 : 300000, 8);
        settings.pin_threads = true;
        qmp::SilentProgress progress;
        FakeMachine machine;
        const qmp::CoreTable cores(machine.groups);
        const std::string one = extract_digits(settings, progress, cores, machine);
        for (const std::uint64_t threads : {2, 3, 16}) {
            settings.threads = threads;
            EXPECT_EQ(extract_digits(settings, progress, cores, machine), one) << threads;
        }
    }
}

// The guard digits, too.
TEST(BbpExtractor, LevelsGiveTheSameBits) {
    FakeMachine machine;
    const qmp::CoreTable cores(machine.groups);
    qmp::SilentProgress progress;
    for (const Formula formula : formulas) {
        const Settings settings = settings_of(formula, 5000);
        std::string first;
        kelvara_test::for_every_level([&](qmp::InstructionLevel) {
            const std::string digits = extract_digits(settings, progress, cores, machine);
            if (first.empty()) first = digits;
            EXPECT_EQ(digits, first);
        });
    }
}

TEST(BbpExtractor, TellsWhatItSums) {
    kelvara_test::RecordingProgress progress;
    FakeMachine machine;
    machine.refuses = true;
    const qmp::CoreTable cores(machine.groups);
    Settings settings = settings_of(Formula::plouffe, 10);
    settings.pin_threads = true;
    extract_digits(settings, progress, cores, machine);
    const std::vector<std::string> expected = {
        "message Frac( 1/(8k + 1) * 2^(-4k + 42) )",
        "step Summing...  |Summing",
        "done",
        "message Failed to set core affinity to core: 0",
        "message Frac( 1/(2k + 1) * 2^(-4k + 39) )",
        "step Summing...  |Summing",
        "done",
        "message Frac( 1/(8k + 5) * 2^(-4k + 40) )",
        "step Summing...  |Summing",
        "done",
        "message Frac( 1/(4k + 3) * 2^(-4k + 39) )",
        "step Summing...  |Summing",
        "done",
    };
    EXPECT_EQ(progress.lines, expected);
}

TEST(BbpExtractor, LeavesThreadsAloneUnlessTold) {
    qmp::SilentProgress progress;
    FakeMachine machine;
    const qmp::CoreTable cores(machine.groups);
    Settings settings = settings_of(Formula::plouffe, 10);
    extract_digits(settings, progress, cores, machine);
    EXPECT_TRUE(machine.asked.empty());
    settings.pin_threads = true;
    extract_digits(settings, progress, cores, machine);
    EXPECT_EQ(machine.asked.size(), 4u);
}

TEST(BbpReport, TheTask) {
    Settings settings = settings_of(Formula::bellard, largest_offset, largest_digits, 1234);
    EXPECT_EQ(printed_by([&] { print_task(settings); }),
              "Hexadecimal Offset: 70,368,744,177,663\n"
              "Digits to Compute: 1,048,576\n"
              "Threads: 1,234\n"
              "\n"
              "Terms Needed: 14,073,749,045,252\n"
              "Internal Precision: 1,048,592 Hexadecimal Digits\n"
              "\n");
    settings.pin_threads = true;
    EXPECT_NE(printed_by([&] { print_task(settings); }).find("\nThreads: 1,234  (pinned to cores)\n"),
              std::string::npos);
}

TEST(BbpReport, DigitsInGroups) {
    const std::string head =
        "Green  = Requested digits that should be correct.\n"
        "Red    = Extra working precision. May not be correct.\n"
        "\n"
        "Hexadecimal Digits starting from: 16^-1,000,000,001\n";
    const std::string digits = "0123456789ABCDEF";
    EXPECT_EQ(printed_by([&] { print_digits(1000000000, digits + "01234567", 8); }),
              head + "0123456789ABCDEF 01234567\n\n");
    EXPECT_EQ(printed_by([&] { print_digits(1000000000, digits + digits + digits + digits, 48); }),
              head + "0123456789ABCDEF 0123456789ABCDEF 0123456789ABCDEF 0123456789ABCDEF\n\n");
    EXPECT_EQ(
        printed_by([&] { print_digits(1000000000, digits + digits + digits + digits + "89ABCDEF", 56); }),
        head + "0123456789ABCDEF 0123456789ABCDEF 0123456789ABCDEF 0123456789ABCDEF\n89ABCDEF\n\n");
}

}  // namespace
}  // namespace kelvara::bbp
