#include "platform/build_identity.h"

#include <algorithm>
#include <cstddef>

#include "platform/os/process.h"

#ifndef KELVARA_IDENTITY
#define KELVARA_IDENTITY "11-BD1"
#endif

namespace kelvara {
namespace {

using Features = qmp::ProcessorFeatures;

constexpr RequiredFeature fma4_features[] = {
    {"", &Features::os_64bit},    {"x64", &Features::x64},      {"SSE", &Features::sse},
    {"SSE2", &Features::sse2},    {"SSE3", &Features::sse3},    {"SSSE3", &Features::ssse3},
    {"SSE4.1", &Features::sse41}, {"SSE4.2", &Features::sse42}, {"AVX", &Features::avx},
    {"", &Features::os_avx},      {"ABM", &Features::abm},      {"FMA4", &Features::fma4},
    {"XOP", &Features::xop},
};

constexpr RequiredFeature avx2_features[] = {
    {"", &Features::os_64bit},    {"x64", &Features::x64},      {"SSE", &Features::sse},
    {"SSE2", &Features::sse2},    {"SSE3", &Features::sse3},    {"SSSE3", &Features::ssse3},
    {"SSE4.1", &Features::sse41}, {"SSE4.2", &Features::sse42}, {"AVX", &Features::avx},
    {"", &Features::os_avx},      {"ABM", &Features::abm},      {"BMI1", &Features::bmi1},
    {"BMI2", &Features::bmi2},    {"FMA3", &Features::fma3},    {"AVX2", &Features::avx2},
    {"ADX", &Features::adx},
};

constexpr BuildIdentity identities[] = {
    {"0.7.3", "9474", "11-BD1 ~ Vessa", "Bulldozer (x64 XOP)", fma4_features},
    {"0.7.3", "9474", "20-AVX2 ~ Vessa", "Broadwell (x64 AVX2)", avx2_features},
};

// The row whose tag begins with the chosen word; an unknown word does not compile.
consteval std::size_t chosen_row() {
    constexpr std::string_view chosen = KELVARA_IDENTITY;
    for (std::size_t row = 0; row < std::size(identities); ++row) {
        if (identities[row].tag.substr(0, identities[row].tag.find(' ')) == chosen) return row;
    }
    throw "KELVARA_IDENTITY names no build identity";
}

std::string join(std::string_view a, std::string_view b, std::string_view c = {}, std::string_view d = {}) {
    std::string text;
    for (const std::string_view part : {a, b, c, d}) text += part;
    return text;
}

}  // namespace

std::span<const BuildIdentity> build_identities() {
    return identities;
}

const BuildIdentity& build_identity() {
    return identities[chosen_row()];
}

std::string version_with_build() {
    return join(build_identity().version, " Build ", build_identity().build);
}

std::string build_version() {
    return join(build_identity().version, ".", build_identity().build);
}

std::string build_target() {
    return join(qmp::os::system_name(), "/", build_identity().tag);
}

std::string build_version_with_target() {
    return join(build_version(), " (", build_target(), ")");
}

std::string program_version() {
    return join(version_with_build(), " (", build_target(), ")");
}

std::string required_feature_list(const BuildIdentity& identity) {
    std::string list;
    for (const RequiredFeature& feature : identity.required) {
        if (feature.name.empty()) continue;
        if (!list.empty()) list += ", ";
        list += feature.name;
    }
    return list;
}

bool has_required_features(const BuildIdentity& identity, const qmp::ProcessorFeatures& features) {
    return std::all_of(identity.required.begin(), identity.required.end(),
                       [&](const RequiredFeature& feature) { return features.*feature.present; });
}

}  // namespace kelvara
