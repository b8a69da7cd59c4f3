// The colours of the screens about the machine, on a pseudo-terminal.
#include <gtest/gtest.h>

#include <string>

#include "platform/processor_features.h"
#include "support/pseudo_terminal.h"

namespace kelvara {
namespace {

// The driver's output of one action, from its start to its end.
std::string shown_by(const std::string& action) {
    kelvara_test::PseudoTerminal terminal({KELVARA_SHELL_DRIVER, "skip-warnings", "pause:-1", action});
    EXPECT_TRUE(terminal.wait_for("\x1b[6n"));
    terminal.type("\x1b[5;1R");
    EXPECT_EQ(terminal.wait_for_end(), 0);
    return terminal.output();
}

TEST(FeaturesScreen, IsGreenForYesAndRedForNo) {
    const std::string output = shown_by("features");
    const std::string yes = "\x1b[0;92mYes\x1b[0m\r\n";
    const std::string no = "\x1b[0;91mNo\x1b[0m\r\n";
    const qmp::ProcessorFeatures& own = qmp::processor_features();
    // A processor of either maker shows both.
    for (const std::string& line : {std::string("    AMD         = ") + (own.amd ? yes : no),
                                    std::string("    Intel       = ") + (own.intel ? yes : no),
                                    std::string("  * x64         = ") + yes}) {
        EXPECT_NE(output.find(line), std::string::npos) << output;
    }
}

TEST(SystemInformationScreen, IsDarkTeal) {
    const std::string output = shown_by("machine");
    const std::size_t begin = output.find("\x1b[0;36mVersion:");
    ASSERT_NE(begin, std::string::npos) << output;
    const std::size_t end = output.find("\r\n\x1b[0m", begin);
    ASSERT_NE(end, std::string::npos) << output;
    const std::string lines = output.substr(begin + 1, end - begin - 1);
    EXPECT_EQ(lines.find('\x1b'), std::string::npos) << output;
    EXPECT_NE(lines.find("Usable Memory:"), std::string::npos) << output;
    EXPECT_NE(lines.rfind("CPU Base"), std::string::npos) << output;
}

}  // namespace
}  // namespace kelvara
