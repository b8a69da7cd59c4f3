// The checks at start-up, on machines of every kind.
#include <gtest/gtest.h>

#include "platform/startup_state.h"
#include "shell/feature_check.h"
#include "shell/group_check.h"
#include "support/standard_streams.h"

namespace kelvara {
namespace {

using kelvara_test::CapturedOutput;
using kelvara_test::FedInput;

std::string groups_output(const std::vector<std::uint32_t>& processors) {
    const FedInput input("");
    CapturedOutput output;
    check_processor_groups(processors);
    return output.finish();
}

TEST(GroupCheck, IsSilentAboutBalancedGroups) {
    EXPECT_EQ(groups_output({}), "");
    EXPECT_EQ(groups_output({64}), "");
    EXPECT_EQ(groups_output({64, 64}), "");
    EXPECT_EQ(groups_output({36, 36}), "");
    EXPECT_EQ(groups_output({8, 8, 8, 8}), "");
}

TEST(GroupCheck, WarnsOfImbalancedGroups) {
    EXPECT_EQ(groups_output({64, 8}),
              "Warning: Imbalanced processor groups detected.\n"
              "This may lead to suboptimal performance.\n"
              "    Group  0:  64 cores\n"
              "    Group  1:   8 cores\n"
              "\n");
    EXPECT_EQ(groups_output({36, 28}),
              "Warning: Imbalanced processor groups detected.\n"
              "This may lead to suboptimal performance.\n"
              "    Group  0:  36 cores\n"
              "    Group  1:  28 cores\n"
              "\n");
    const std::string many = groups_output({4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 100});
    EXPECT_NE(many.find("    Group  9:   4 cores\n    Group 10:  100 cores\n"), std::string::npos) << many;
}

TEST(GroupCheck, IsSilentAboutThisMachinesOneGroup) {
    CapturedOutput output;
    check_processor_groups();
    EXPECT_EQ(output.finish(), "");
}

const std::string heading =
    "\nChecking processor/OS features...\n\n"
    "Required Features:\n"
    "    x64, SSE, SSE2, SSE3, SSSE3, SSE4.1, SSE4.2, AVX, ABM, FMA4, XOP\n"
    "\n";

std::string features_output(const qmp::ProcessorFeatures& features) {
    const FedInput input("");
    CapturedOutput output;
    check_processor_features(build_identities()[0], features);
    return output.finish();
}

TEST(FeatureCheck, PassesAProcessorWithEveryFeature) {
    qmp::ProcessorFeatures features;
    for (const RequiredFeature& feature : build_identities()[0].required) features.*feature.present = true;
    EXPECT_EQ(features_output(features), heading + "\n");
}

TEST(FeatureCheck, WarnsOfAMissingFeature) {
    EXPECT_EQ(features_output({}),
              heading +
                  "\nWarning:\n"
                  "  This computer does not have all the processor or operating system\n"
                  "  features that are necessary to run this binary.\n\n"
                  "  Proceeding may cause the program to crash.\n"
                  "\n"
                  "  Command line users can skip this message by passing, \"skip-warnings\"\n"
                  "  as the first parameter.\n"
                  "\n"
                  "\n\n");
}

}  // namespace
}  // namespace kelvara
