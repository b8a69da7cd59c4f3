// What a session tells of its run besides the digits: its event log, its observer, its record.
#include "sessions/ram_session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "radix/output_driver.h"
#include "sessions/session_run.h"
#include "support/sanitized.h"

namespace kelvara {
namespace {

using kelvara_test::Algorithm;
using kelvara_test::Outcome;
using kelvara_test::pi_and_e;
using kelvara_test::run_session;

constexpr std::uint64_t digits = 1000;

struct Event {
    double seconds;
    std::string text;
};

// Whether a text has a form: 'A' in it stands for a letter, '9' for a digit, '_' for a digit or a blank,
// everything else for itself.
bool has_form(const std::string& text, const std::string& form) {
    const auto fits = [](char c, char f) {
        const bool digit = c >= '0' && c <= '9';
        if (f == 'A') return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        if (f == '9') return digit;
        if (f == '_') return digit || c == ' ';
        return c == f;
    };
    return std::equal(text.begin(), text.end(), form.begin(), form.end(), fits);
}

// A number with three decimals: digits, a point, three digits.
bool is_time(const std::string& text) {
    return text.size() >= 5 && has_form(text, std::string(text.size() - 4, '9') + ".999");
}

// The lines of a log, time stamp, seconds and text apart by tabulators; each is checked for its form.
std::vector<Event> events_of(const std::string& log) {
    std::vector<Event> events;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t first = line.find('\t');
        const std::size_t second = first == std::string::npos ? first : line.find('\t', first + 1);
        if (second == std::string::npos || !line.ends_with('\r')) {
            ADD_FAILURE() << line;
            continue;
        }
        EXPECT_TRUE(has_form(line.substr(0, first), "AAA AAA _9 99:99:99 9999")) << line;
        const std::string seconds = line.substr(first + 1, second - first - 1);
        EXPECT_TRUE(is_time(seconds)) << line;
        const std::string text = line.substr(second + 1, line.size() - second - 2);
        EXPECT_FALSE(text.empty());
        EXPECT_EQ(text.find_first_of("\t\r"), std::string::npos);
        events.push_back({std::stod(seconds), text});
    }
    EXPECT_TRUE(log.ends_with("\r\n"));
    return events;
}

// The times of the two reservations are any: "Name: 0.123 seconds  ( 0.002 minutes )" becomes "Name: (time)".
std::string without_time(const std::string& text) {
    const std::size_t colon = text.find(": "), unit = text.find(" seconds  ( ");
    const std::string end = " minutes )";
    if (colon == std::string::npos || unit == std::string::npos || !text.ends_with(end)) return text;
    const std::size_t begin_minutes = unit + std::string(" seconds  ( ").size();
    const std::string seconds = text.substr(colon + 2, unit - colon - 2);
    const std::string minutes = text.substr(begin_minutes, text.size() - end.size() - begin_minutes);
    return is_time(seconds) && is_time(minutes) ? text.substr(0, colon + 2) + "(time)" : text;
}

std::vector<std::string> texts_of(const std::vector<Event>& events) {
    std::vector<std::string> texts;
    for (const Event& event : events) texts.push_back(without_time(event.text));
    return texts;
}

TEST(SessionLog, HasEveryStageOfPi) {
    const Outcome outcome = run_session(pi_and_e[0], digits, 2, "pushpool");
    const std::vector<Event> events = events_of(outcome.log);
    const std::vector<std::string> expected = {
        "Reserving Working Memory",
        "Reserving Working Memory: (time)",
        "Constructing Twiddle Tables",
        "Constructing Twiddle Tables: (time)",
        "Begin Computation",
        "Summing Series",
        "Division",
        "InvSqrt",
        "Final Multiply",
        "Writing hexadecimal Digits",
        "Base Converting",
        "Writing Decimal Digits",
        "Verifying Base Conversion",
        "End Computation",
    };
    EXPECT_EQ(texts_of(events), expected);
    EXPECT_TRUE(std::is_sorted(events.begin(), events.end(),
                               [](const Event& a, const Event& b) { return a.seconds < b.seconds; }));
    // From the start of the log, which is the session's.
    EXPECT_LT(events.front().seconds, 100.0);
}

TEST(SessionLog, HasEveryStageOfE) {
    const Outcome outcome = run_session(pi_and_e[5], digits, 1, "none");
    const std::vector<std::string> expected = {
        "Reserving Working Memory",
        "Reserving Working Memory: (time)",
        "Constructing Twiddle Tables",
        "Constructing Twiddle Tables: (time)",
        "Begin Computation",
        "Summing Series",
        "Division",
        "Writing hexadecimal Digits",
        "Base Converting",
        "Writing Decimal Digits",
        "Verifying Base Conversion",
        "End Computation",
    };
    EXPECT_EQ(texts_of(events_of(outcome.log)), expected);
}

// Every call, in order.
class Recording final : public qmp::Progress {
  public:
    void begin_step(std::string_view title, std::string_view status) override {
        calls.push_back("begin " + std::string(title) + "|" + std::string(status));
    }
    void note(std::string_view text, qmp::console::Colour) override {
        calls.push_back("note " + std::string(text));
    }
    void push_label(std::string_view, qmp::console::Colour) override { pushed++; }
    void pop_label() override { popped++; }
    void end_step() override { calls.emplace_back("end"); }
    void message(std::string_view text, qmp::console::Colour) override {
        calls.push_back("message " + std::string(text));
    }
    std::vector<std::string> calls;
    int pushed = 0;
    int popped = 0;
};

TEST(SessionObserver, IsToldEveryStep) {
    Recording observer;
    const Outcome observed = run_session(pi_and_e[0], digits, 2, "pushpool", &observer);
    const std::vector<std::string> expected = {
        "begin Summing Series...  |Summing Series",
        "note Summing: 74 terms",
        "end",
        "begin Division...|Division",
        "end",
        "begin InvSqrt...|InvSqrt",
        "end",
        "begin Final Multiply...|Final Multiply",
        "end",
        "begin Writing Hexadecimal Digits:|Writing hexadecimal Digits",
        "end",
        "begin Base Converting:|Base Converting",
        "end",
        "begin Writing Decimal Digits:   |Writing Decimal Digits",
        "end",
        "begin Verifying Base Conversion...|Verifying Base Conversion",
        "end",
    };
    EXPECT_EQ(observer.calls, expected);
    EXPECT_GT(observer.pushed, 10);
    EXPECT_EQ(observer.pushed, observer.popped);
    EXPECT_TRUE(observed.decimal == run_session(pi_and_e[0], digits, 2, "pushpool").decimal);
}

TEST(SessionRecord, TellsTheMachine) {
    const SystemInformation system = run_session(pi_and_e[5], digits, 1, "none").system;
    EXPECT_EQ(system.os_version, qmp::os::os_version());
    EXPECT_GE(system.logical_cores, 1u);
    EXPECT_GT(system.usable_memory, 0u);
}

// The reservation is what the planners say, and the run stays within it.
TEST(SessionRecord, TellsWhatWasReservedAndUsed) {
    for (const Algorithm& algorithm : pi_and_e) {
        for (const std::uint64_t wanted : {1'000u, 50'000u, 300'000u}) {
            if (kelvara_test::sanitized && wanted > 50'000) continue;
            for (const std::uint64_t tasks : {1u, 2u, 16u}) {
                SCOPED_TRACE(testing::Message() << algorithm.keyword << ", " << wanted << ", " << tasks);
                const Outcome outcome = run_session(algorithm, wanted, tasks, "pushpool");
                const auto constant = make_constant(constant_id(algorithm.constant));
                constant->set_algorithm_keyword(algorithm.keyword);
                constant->set_size(precision_for_digits(wanted));
                const std::uint64_t planned = std::max(constant->make_ram_computation(tasks)->working_bytes(),
                                                       qmp::decimal_output_bytes(wanted, tasks));
                EXPECT_EQ(outcome.working_memory, (planned + 1'048'640) / 8 * 8);
                EXPECT_LE(outcome.working_memory_peak, planned + 10 * qmp::checked_array_overhead(64));
                EXPECT_GT(outcome.working_memory_peak, planned / 2);
                EXPECT_GT(outcome.twiddle_memory, 0u);
                EXPECT_GT(outcome.reserving_seconds, 0.0);
                EXPECT_GT(outcome.twiddle_seconds, 0.0);
            }
        }
    }
}

}  // namespace
}  // namespace kelvara
