#include "platform/processor_features.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using qmp::CpuidLeaves;
using qmp::ProcessorFeatures;

struct Row {
    const char* name;
    bool ProcessorFeatures::*field;
    std::uint32_t qmp::CpuidLeaf::*word;
    int bit;
};

using Leaf = qmp::CpuidLeaf;

const std::vector<Row> leaf_1_rows = {{"mmx", &ProcessorFeatures::mmx, &Leaf::edx, 23},
                                      {"sse", &ProcessorFeatures::sse, &Leaf::edx, 25},
                                      {"sse2", &ProcessorFeatures::sse2, &Leaf::edx, 26},
                                      {"sse3", &ProcessorFeatures::sse3, &Leaf::ecx, 0},
                                      {"ssse3", &ProcessorFeatures::ssse3, &Leaf::ecx, 9},
                                      {"fma3", &ProcessorFeatures::fma3, &Leaf::ecx, 12},
                                      {"sse41", &ProcessorFeatures::sse41, &Leaf::ecx, 19},
                                      {"sse42", &ProcessorFeatures::sse42, &Leaf::ecx, 20},
                                      {"aes", &ProcessorFeatures::aes, &Leaf::ecx, 25},
                                      {"avx", &ProcessorFeatures::avx, &Leaf::ecx, 28},
                                      {"rdrand", &ProcessorFeatures::rdrand, &Leaf::ecx, 30}};

const std::vector<Row> leaf_7_rows = {{"bmi1", &ProcessorFeatures::bmi1, &Leaf::ebx, 3},
                                      {"avx2", &ProcessorFeatures::avx2, &Leaf::ebx, 5},
                                      {"bmi2", &ProcessorFeatures::bmi2, &Leaf::ebx, 8},
                                      {"mpx", &ProcessorFeatures::mpx, &Leaf::ebx, 14},
                                      {"avx512f", &ProcessorFeatures::avx512f, &Leaf::ebx, 16},
                                      {"avx512dq", &ProcessorFeatures::avx512dq, &Leaf::ebx, 17},
                                      {"rdseed", &ProcessorFeatures::rdseed, &Leaf::ebx, 18},
                                      {"adx", &ProcessorFeatures::adx, &Leaf::ebx, 19},
                                      {"avx512ifma", &ProcessorFeatures::avx512ifma, &Leaf::ebx, 21},
                                      {"avx512pf", &ProcessorFeatures::avx512pf, &Leaf::ebx, 26},
                                      {"avx512er", &ProcessorFeatures::avx512er, &Leaf::ebx, 27},
                                      {"avx512cd", &ProcessorFeatures::avx512cd, &Leaf::ebx, 28},
                                      {"sha", &ProcessorFeatures::sha, &Leaf::ebx, 29},
                                      {"avx512bw", &ProcessorFeatures::avx512bw, &Leaf::ebx, 30},
                                      {"avx512vl", &ProcessorFeatures::avx512vl, &Leaf::ebx, 31},
                                      {"prefetchwt1", &ProcessorFeatures::prefetchwt1, &Leaf::ecx, 0},
                                      {"avx512vbmi", &ProcessorFeatures::avx512vbmi, &Leaf::ecx, 1}};

const std::vector<Row> extended_rows = {{"abm", &ProcessorFeatures::abm, &Leaf::ecx, 5},
                                        {"sse4a", &ProcessorFeatures::sse4a, &Leaf::ecx, 6},
                                        {"prefetchw", &ProcessorFeatures::prefetchw, &Leaf::ecx, 8},
                                        {"xop", &ProcessorFeatures::xop, &Leaf::ecx, 11},
                                        {"fma4", &ProcessorFeatures::fma4, &Leaf::ecx, 16},
                                        {"x64", &ProcessorFeatures::x64, &Leaf::edx, 29}};

CpuidLeaves modern_but_empty() {
    CpuidLeaves leaves;
    leaves.leaf_0.eax = 7;
    leaves.leaf_80000000.eax = 0x80000008;
    return leaves;
}

// The features that are set, of those the instruction tells.
int count_of(const ProcessorFeatures& features) {
    int count = features.amd + features.intel + features.os_avx + features.os_avx512;
    for (const auto* rows : {&leaf_1_rows, &leaf_7_rows, &extended_rows}) {
        for (const Row& row : *rows) count += features.*row.field;
    }
    return count;
}

void expect_each_bit_alone(const std::vector<Row>& rows, Leaf CpuidLeaves::*leaf) {
    for (const Row& row : rows) {
        CpuidLeaves leaves = modern_but_empty();
        (leaves.*leaf).*row.word = std::uint32_t{1} << row.bit;
        const ProcessorFeatures features = qmp::features_of(leaves);
        EXPECT_TRUE(features.*row.field) << row.name;
        EXPECT_EQ(count_of(features), 1) << row.name;

        (leaves.*leaf).*row.word = ~leaves.leaf_1.eax & ~(std::uint32_t{1} << row.bit);
        EXPECT_FALSE(qmp::features_of(leaves).*row.field) << row.name;
    }
}

TEST(ProcessorFeatures, EveryBitSetsItsFeatureAndNoOther) {
    expect_each_bit_alone(leaf_1_rows, &CpuidLeaves::leaf_1);
    expect_each_bit_alone(leaf_7_rows, &CpuidLeaves::leaf_7);
    expect_each_bit_alone(extended_rows, &CpuidLeaves::leaf_80000001);
    EXPECT_EQ(leaf_1_rows.size() + leaf_7_rows.size() + extended_rows.size() + 5, 39u);
}

TEST(ProcessorFeatures, MissingLeavesLeaveTheirFeaturesFalse) {
    CpuidLeaves all;
    for (Leaf CpuidLeaves::*leaf :
         {&CpuidLeaves::leaf_1, &CpuidLeaves::leaf_7, &CpuidLeaves::leaf_80000001}) {
        all.*leaf = {~0u, ~0u, ~0u, ~0u};
    }
    all.xcr0 = ~std::uint64_t{0};
    all.leaf_0.eax = 0;
    all.leaf_80000000.eax = 0x80000000;
    EXPECT_EQ(count_of(qmp::features_of(all)), 0);
    EXPECT_TRUE(qmp::features_of(all).os_64bit);

    all.leaf_0.eax = 6;
    const ProcessorFeatures six = qmp::features_of(all);
    EXPECT_TRUE(six.avx);
    EXPECT_TRUE(six.os_avx);
    for (const Row& row : leaf_7_rows) EXPECT_FALSE(six.*row.field) << row.name;
    for (const Row& row : extended_rows) EXPECT_FALSE(six.*row.field) << row.name;
}

// The lowest maxima with which a leaf is there.
TEST(ProcessorFeatures, TheHighestLeafItselfIsRead) {
    CpuidLeaves leaves;
    leaves.leaf_1 = leaves.leaf_7 = leaves.leaf_80000001 = {~0u, ~0u, ~0u, ~0u};
    leaves.xcr0 = 0xe6;
    leaves.leaf_0.eax = 1;
    ProcessorFeatures features = qmp::features_of(leaves);
    for (const Row& row : leaf_1_rows) EXPECT_TRUE(features.*row.field) << row.name;
    EXPECT_TRUE(features.os_avx512);
    EXPECT_EQ(count_of(features), static_cast<int>(leaf_1_rows.size()) + 2);

    leaves.leaf_0.eax = 7;
    features = qmp::features_of(leaves);
    for (const Row& row : leaf_7_rows) EXPECT_TRUE(features.*row.field) << row.name;

    leaves.leaf_0.eax = 0;
    leaves.leaf_80000000.eax = 0x80000001;
    features = qmp::features_of(leaves);
    for (const Row& row : extended_rows) EXPECT_TRUE(features.*row.field) << row.name;
    EXPECT_EQ(count_of(features), static_cast<int>(extended_rows.size()));
}

TEST(ProcessorFeatures, TheSystemMustSaveTheWideRegisters) {
    constexpr std::uint32_t osxsave = 1u << 27;
    constexpr std::uint32_t avx = 1u << 28;
    auto features = [](std::uint32_t ecx, std::uint64_t xcr0) {
        CpuidLeaves leaves = modern_but_empty();
        leaves.leaf_1.ecx = ecx;
        leaves.xcr0 = xcr0;
        return qmp::features_of(leaves);
    };
    EXPECT_TRUE(features(osxsave | avx, 0x06).os_avx);
    EXPECT_FALSE(features(osxsave | avx, 0x06).os_avx512);
    EXPECT_TRUE(features(osxsave | avx, 0xe7).os_avx512);
    for (const std::uint64_t partial : {0x02, 0x04, 0xe0, 0xe2, 0xe4}) {
        EXPECT_FALSE(features(osxsave | avx, partial).os_avx) << partial;
        EXPECT_FALSE(features(osxsave | avx, partial).os_avx512) << partial;
    }
    for (const std::uint64_t partial : {0x26, 0x46, 0x86, 0x66, 0xa6, 0xc6}) {
        EXPECT_TRUE(features(osxsave | avx, partial).os_avx) << partial;
        EXPECT_FALSE(features(osxsave | avx, partial).os_avx512) << partial;
    }
    EXPECT_FALSE(features(osxsave, 0xe7).os_avx);
    EXPECT_FALSE(features(avx, 0xe7).os_avx);
}

TEST(ProcessorFeatures, VendorsByName) {
    auto vendor = [](const char* name) {
        CpuidLeaves leaves = modern_but_empty();
        std::memcpy(&leaves.leaf_0.ebx, name, 4);
        std::memcpy(&leaves.leaf_0.edx, name + 4, 4);
        std::memcpy(&leaves.leaf_0.ecx, name + 8, 4);
        return qmp::features_of(leaves);
    };
    EXPECT_TRUE(vendor("AuthenticAMD").amd);
    EXPECT_FALSE(vendor("AuthenticAMD").intel);
    EXPECT_TRUE(vendor("GenuineIntel").intel);
    EXPECT_FALSE(vendor("GenuineIntel").amd);
    EXPECT_EQ(count_of(vendor("HygonGenuine")), 0);
}

TEST(ProcessorFeatures, ThisProcessorAgreesWithTheCompilersOwnDetection) {
    const ProcessorFeatures& features = qmp::processor_features();
    EXPECT_TRUE(features.sse2);
    EXPECT_TRUE(features.x64);
    EXPECT_EQ(features.sse42, __builtin_cpu_supports("sse4.2") != 0);
    // The compiler counts the system's support in.
    EXPECT_EQ(features.avx2 && features.os_avx, __builtin_cpu_supports("avx2") != 0);
    EXPECT_EQ(features.fma3 && features.os_avx, __builtin_cpu_supports("fma") != 0);
    EXPECT_EQ(features.avx512f && features.os_avx512, __builtin_cpu_supports("avx512f") != 0);
}

}  // namespace
