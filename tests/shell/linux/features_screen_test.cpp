// The colours of the "Hardware Features" screen, on a pseudo-terminal.
#include <gtest/gtest.h>

#include <string>

#include "platform/processor_features.h"
#include "support/pseudo_terminal.h"

namespace kelvara {
namespace {

TEST(FeaturesScreen, IsGreenForYesAndRedForNo) {
    kelvara_test::PseudoTerminal terminal({KELVARA_SHELL_DRIVER, "skip-warnings", "pause:-1", "features"});
    ASSERT_TRUE(terminal.wait_for("\x1b[6n"));
    terminal.type("\x1b[5;1R");
    EXPECT_EQ(terminal.wait_for_end(), 0);
    const std::string yes = "\x1b[0;92mYes\x1b[0m\r\n";
    const std::string no = "\x1b[0;91mNo\x1b[0m\r\n";
    const qmp::ProcessorFeatures& own = qmp::processor_features();
    // A processor of either maker shows both.
    for (const std::string& line : {std::string("    AMD         = ") + (own.amd ? yes : no),
                                    std::string("    Intel       = ") + (own.intel ? yes : no),
                                    std::string("  * x64         = ") + yes}) {
        EXPECT_NE(terminal.output().find(line), std::string::npos) << terminal.output();
    }
}

}  // namespace
}  // namespace kelvara
