#include "platform/build_identity.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/os/process.h"

namespace kelvara {
namespace {

const BuildIdentity& identity_of(std::string_view tag) {
    for (const BuildIdentity& identity : build_identities()) {
        if (identity.tag == tag) return identity;
    }
    throw std::runtime_error("no such identity");
}

qmp::ProcessorFeatures features_of(const BuildIdentity& identity) {
    qmp::ProcessorFeatures features;
    for (const RequiredFeature& feature : identity.required) features.*feature.present = true;
    return features;
}

TEST(BuildIdentity, TheShippedOne) {
    const BuildIdentity& identity = identity_of("11-BD1 ~ Vessa");
    EXPECT_EQ(identity.version, "0.7.3");
    EXPECT_EQ(identity.build, "9474");
    EXPECT_EQ(identity.tuning, "Bulldozer (x64 XOP)");
    EXPECT_EQ(required_feature_list(identity),
              "x64, SSE, SSE2, SSE3, SSSE3, SSE4.1, SSE4.2, AVX, ABM, FMA4, XOP");
}

TEST(BuildIdentity, ComposesItsTexts) {
    const std::string tag(build_identity().tag);
    const std::string target = std::string(qmp::os::system_name()) + "/" + tag;
    EXPECT_EQ(version_with_build(), "0.7.3 Build 9474");
    EXPECT_EQ(build_version(), "0.7.3.9474");
    EXPECT_EQ(build_target(), target);
    EXPECT_EQ(build_version_with_target(), "0.7.3.9474 (" + target + ")");
    EXPECT_EQ(program_version(), "0.7.3 Build 9474 (" + target + ")");
}

TEST(BuildIdentity, RequiresEachFeature) {
    for (const BuildIdentity& identity : build_identities()) {
        const qmp::ProcessorFeatures all = features_of(identity);
        EXPECT_TRUE(has_required_features(identity, all));
        for (const RequiredFeature& feature : identity.required) {
            qmp::ProcessorFeatures one_missing = all;
            one_missing.*feature.present = false;
            EXPECT_FALSE(has_required_features(identity, one_missing)) << identity.tag << " " << feature.name;
        }
    }
}

TEST(BuildIdentity, RequiresSavedAvxStateWithoutNamingIt) {
    const BuildIdentity& identity = identity_of("11-BD1 ~ Vessa");
    qmp::ProcessorFeatures features = features_of(identity);
    features.os_avx = false;
    EXPECT_FALSE(has_required_features(identity, features));
    features = features_of(identity);
    features.os_64bit = false;
    EXPECT_FALSE(has_required_features(identity, features));
    // What it does not ask for does not matter.
    features = features_of(identity);
    EXPECT_FALSE(features.avx2);
    EXPECT_TRUE(has_required_features(identity, features));
}

}  // namespace
}  // namespace kelvara
