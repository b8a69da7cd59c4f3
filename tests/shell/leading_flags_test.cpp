#include "shell/leading_flags.h"

#include <gtest/gtest.h>

#include "console/console.h"
#include "platform/startup_state.h"

namespace kelvara {
namespace {

class LeadingFlagsTest : public testing::Test {
  protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }

    static void reset() {
        startup_state() = {};
        qmp::console::enable_colours(true);
    }

    // The position of the first argument that is not a leading flag.
    static std::uint64_t parse(std::vector<std::string> flags) {
        flags.insert(flags.begin(), "kelvara");
        CommandLine command_line(std::move(flags));
        parse_leading_flags(command_line);
        return command_line.index();
    }
};

TEST_F(LeadingFlagsTest, PauseModes) {
    EXPECT_EQ(parse({"pause:-1"}), 2u);
    EXPECT_EQ(startup_state().pause_mode, -1);
    parse({"pause:1"});
    EXPECT_EQ(startup_state().pause_mode, 1);
    parse({"pause:-2k"});
    EXPECT_EQ(startup_state().pause_mode, -2000);
    parse({"pause"});
    EXPECT_EQ(startup_state().pause_mode, 0);
    parse({"pause:999999t"});
    EXPECT_EQ(startup_state().pause_mode, 2147483647);
    parse({"pause:-999999t"});
    EXPECT_EQ(startup_state().pause_mode, -2147483647 - 1);
}

TEST_F(LeadingFlagsTest, Colours) {
    parse({"colors:0"});
    EXPECT_FALSE(qmp::console::colours_enabled());
    parse({"colors:1"});
    EXPECT_TRUE(qmp::console::colours_enabled());
    parse({"colors:-1"});
    EXPECT_FALSE(qmp::console::colours_enabled());
    parse({"colors:1", "colors"});
    EXPECT_FALSE(qmp::console::colours_enabled());
}

TEST_F(LeadingFlagsTest, PersonalData) {
    parse({"PII"});
    EXPECT_FALSE(startup_state().personal_data_shown);
    parse({"PII:1"});
    EXPECT_TRUE(startup_state().personal_data_shown);
    parse({"PII:0"});
    EXPECT_TRUE(startup_state().personal_data_shown);
    parse({"PII:-1"});
    EXPECT_FALSE(startup_state().personal_data_shown);
}

TEST_F(LeadingFlagsTest, SkipWarningsWhateverItsValue) {
    parse({"skip-warnings:0"});
    EXPECT_TRUE(startup_state().skip_warnings);
}

TEST_F(LeadingFlagsTest, HeightIsConsumed) {
    EXPECT_EQ(parse({"height:50", "height", "height:-3", "height:99999999999"}), 5u);
}

TEST_F(LeadingFlagsTest, StopsAtTheFirstOtherArgument) {
    EXPECT_EQ(parse({"pause:1", "custom", "skip-warnings"}), 2u);
    EXPECT_FALSE(startup_state().skip_warnings);
    EXPECT_EQ(parse({"Pause:1", "skip-warnings"}), 1u);
    EXPECT_EQ(parse({"pii:1"}), 1u);
    EXPECT_EQ(parse({"pause:1", "colors:1", "skip-warnings"}), 4u);
    EXPECT_EQ(parse({}), 1u);
}

}  // namespace
}  // namespace kelvara
