#include "sessions/report.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "sessions/event_log.h"
#include "sessions/utilization.h"
#include "support/folder.h"

namespace kelvara {
namespace {

std::string captured(void (*print)()) {
    testing::internal::CaptureStdout();
    print();
    return testing::internal::GetCapturedStdout();
}

// A start whose times are whole, so that adding to them and subtracting again is exact: the
// times of a test program that has run for a while would lose the last bits asserted below.
qmp::CpuTimePoint a_start() {
    qmp::CpuTimePoint start = qmp::cpu_now();
    start.user = 16.0;
    start.kernel = 2.0;
    return start;
}

qmp::CpuTimePoint after(const qmp::CpuTimePoint& start, double user, double kernel) {
    qmp::CpuTimePoint end = qmp::cpu_now();
    while (qmp::seconds_between(end.wall, start.wall) <= 0.0) end = qmp::cpu_now();
    end.user = start.user + user;
    end.kernel = start.kernel + kernel;
    return end;
}

TEST(Utilization, IsAShareOfTheWallTime) {
    const qmp::CpuTimePoint start = a_start();
    const qmp::CpuTimePoint end = after(start, 3.0, 1.5);
    const double wall = qmp::seconds_between(end.wall, start.wall);
    const Utilization utilization = Utilization::between(start, end, 4);
    EXPECT_TRUE(utilization.measured);
    EXPECT_DOUBLE_EQ(utilization.user_percent, 300.0 / wall);
    EXPECT_DOUBLE_EQ(utilization.kernel_percent, 150.0 / wall);
    EXPECT_EQ(utilization.cores, 4u);
}

TEST(Utilization, WithoutUserTimeIsTooFastToMeasure) {
    const qmp::CpuTimePoint start = a_start();
    EXPECT_FALSE(Utilization::between(start, after(start, 0.0, 1.0), 2).measured);
    EXPECT_FALSE(Utilization::between(start, start, 0).measured);
    EXPECT_EQ(Utilization::between(start, start, 0).cores, 1u);
}

TEST(Utilization, PrintsBothLines) {
    EXPECT_EQ(captured([] {
                  print_utilization({true, 187.654, 3.2, 2});
              }),
              "CPU Utilization:          187.65 %  +    3.20 % kernel overhead\n"
              "Multi-core Efficiency:     93.83 %  +    1.60 % kernel overhead\n");
    EXPECT_EQ(captured([] { print_utilization({}); }),
              "CPU Utilization:        Too Fast to Measure\nMulti-core Efficiency:  Too Fast to Measure\n");
}

TEST(Utilization, AsTextIsWhatTheScreenShows) {
    const Utilization utilization{true, 187.654, 3.2, 2};
    EXPECT_EQ(utilization_text(utilization), "  187.65 %  +    3.20 % kernel overhead");
    EXPECT_EQ(efficiency_text(utilization), "   93.83 %  +    1.60 % kernel overhead");
    EXPECT_EQ(utilization_text({true, 50.0, -1.0, 1}), "   50.00 %");
    EXPECT_EQ(utilization_text({}), "Too Fast to Measure");
    EXPECT_EQ(efficiency_text({}), "Too Fast to Measure");
}

TEST(LastDigits, StandInLinesOfFiftyWithPositions) {
    EXPECT_EQ(captured([] { print_last_digits(std::string(50, '1') + std::string(50, '2'), 1234567); }),
              "Last Digits:  \n"
              "1111111111 1111111111 1111111111 1111111111 1111111111  :  1,234,517\n"
              "2222222222 2222222222 2222222222 2222222222 2222222222  :  1,234,567\n");
}

TEST(LastDigits, OfShortResultsFillNoLine) {
    EXPECT_EQ(captured([] { print_last_digits("123456789012", 12); }),
              "Last Digits:  \n"
              "1234567890 12  :  12\n");
    EXPECT_EQ(captured([] { print_last_digits("", 0); }), "Last Digits:  \n");
}

TEST(EventLog, WritesOneLineAnEvent) {
    EventLog log;
    log.append("Begin Computation");
    const std::string& text = log.text();
    ASSERT_GT(text.size(), 24u);
    EXPECT_EQ(text[3], ' ');
    EXPECT_EQ(text[13], ':');
    EXPECT_EQ(text[24], '\t');
    EXPECT_EQ(text.substr(text.rfind('\t')), "\tBegin Computation\r\n");
    const std::string seconds = text.substr(25, text.rfind('\t') - 25);
    EXPECT_EQ(seconds.size() - seconds.find('.'), 4u);
}

TEST(EventLog, AlsoWritesToAnAttachedFile) {
    kelvara_test::TemporaryFolder folder;
    {
        EventLog log;
        log.append("before");
        log.attach(folder.path("events.txt"));
        log.append("after");
    }
    std::ifstream file(folder.native("events.txt"), std::ios::binary);
    const std::string written{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_EQ(written.find("before"), std::string::npos);
    EXPECT_NE(written.find("\tafter\r\n"), std::string::npos);
}

}  // namespace
}  // namespace kelvara
