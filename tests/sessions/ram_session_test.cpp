// What a session tells of its run besides the digits: its event log, its observer, its record.
#include "sessions/ram_session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
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

// The lines of a log; each is checked for its form.
std::vector<Event> events_of(const std::string& log) {
    static const std::regex form(
        "(Sun|Mon|Tue|Wed|Thu|Fri|Sat) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 123][0-9] "
        "[0-9]{2}:[0-9]{2}:[0-9]{2} [0-9]{4}\\t([0-9]+\\.[0-9]{3})\\t([^\\t\\r\\n]+)\\r");
    std::vector<Event> events;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        EXPECT_TRUE(std::regex_match(line, match, form)) << line;
        if (match.size() == 5) events.push_back({std::stod(match[3]), match[4]});
    }
    EXPECT_TRUE(log.ends_with("\r\n"));
    return events;
}

std::vector<std::string> texts_of(const std::vector<Event>& events) {
    std::vector<std::string> texts;
    for (const Event& event : events) {
        // The times of the two reservations, of which any will do.
        static const std::regex time(
            "([A-Za-z ]+: )[0-9]+\\.[0-9]{3} seconds  \\( [0-9]+\\.[0-9]{3} minutes \\)");
        texts.push_back(std::regex_replace(event.text, time, "$1(time)"));
    }
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
