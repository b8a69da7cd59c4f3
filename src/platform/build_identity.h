// What this build calls itself, and the processor features that it asks for.
//
// A build carries one identity out of a small table; the build option KELVARA_IDENTITY chooses it by the
// first word of its tag. The identity is a name and a promise to warn: the kernels of every instruction
// set are in each build, and the best that the processor offers runs.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/processor_features.h"

namespace kelvara {

struct RequiredFeature {
    // As the feature list shows it; empty for what goes without saying (a 64-bit system, saved AVX state).
    std::string_view name;
    bool qmp::ProcessorFeatures::*present;
};

struct BuildIdentity {
    std::string_view version;
    std::string_view build;
    std::string_view tag;
    // The processors that the identity is made for.
    std::string_view tuning;
    std::span<const RequiredFeature> required;
};

// Every identity that a build can have, and the one that this build has.
std::span<const BuildIdentity> build_identities();
const BuildIdentity& build_identity();

// 0.7.3 Build 9474
std::string version_with_build();
// 0.7.3.9474
std::string build_version();
// Windows/11-BD1 ~ Vessa, or Linux/...
std::string build_target();
// 0.7.3.9474 (Windows/11-BD1 ~ Vessa)
std::string build_version_with_target();
// 0.7.3 Build 9474 (Windows/11-BD1 ~ Vessa)
std::string program_version();

// x64, SSE, SSE2, ...
std::string required_feature_list(const BuildIdentity& identity);
bool has_required_features(const BuildIdentity& identity, const qmp::ProcessorFeatures& features);

}  // namespace kelvara
