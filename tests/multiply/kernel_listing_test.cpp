#include "multiply/kernel_listing.h"

#include <gtest/gtest.h>

#include <set>

#include "multiply/algorithm_table.h"
#include "multiply/basecase/karatsuba.h"

namespace qmp {
namespace {

TEST(KernelListing, EveryTransformOfTheRegistryHasAFamily) {
    const auto families = kernel_families();
    for (const char* key : {"FFT", "N32", "N64", "HNT", "VST"}) {
        const std::string version = find_algorithm(key, WordKind::basic64)->version;
        int found = 0;
        for (const KernelFamily& family : families) found += family.name.starts_with(version);
        EXPECT_EQ(found, 1) << version;
    }
    EXPECT_EQ(families.size(), 5u);
}

TEST(KernelListing, FamiliesListTheirKernelsOnce) {
    for (const KernelFamily& family : kernel_families()) {
        EXPECT_FALSE(family.kernels.empty()) << family.name;
        EXPECT_EQ(std::set<std::string>(family.kernels.begin(), family.kernels.end()).size(),
                  family.kernels.size());
        // Plain x86-64 runs everywhere, as the last choice.
        EXPECT_TRUE(family.kernels.back().ends_with("x64 Native")) << family.name;
        // The floating-point transform has one list of sizes only.
        EXPECT_EQ(family.specialised_limit_table, !family.name.starts_with("FFTv3")) << family.name;
    }
}

TEST(KernelListing, ThresholdsAreThoseInUse) {
    const std::uint64_t before = c64i_mul_threshold;
    c64i_mul_threshold = 99;
    const auto thresholds = basecase_thresholds();
    c64i_mul_threshold = before;
    ASSERT_EQ(thresholds.size(), 4u);
    EXPECT_STREQ(thresholds[3].name, "c64i_mul: Basecase - Karatsuba");
    EXPECT_EQ(thresholds[3].words, 99u);
    EXPECT_EQ(thresholds[2].words, c64i_sqr_threshold);
    EXPECT_EQ(thresholds[1].words, c32i_mul_threshold);
    EXPECT_EQ(thresholds[0].words, c32i_sqr_threshold);
}

TEST(KernelListing, BasecaseEntriesNameTheirKernels) {
    std::set<std::string> entries, kernels;
    for (const BasecaseKernel& kernel : basecase_kernels()) {
        entries.insert(kernel.entry);
        kernels.insert(kernel.kernel);
        EXPECT_TRUE(std::string(kernel.entry).starts_with("qmb_MULB_c"));
        EXPECT_TRUE(std::string(kernel.kernel).starts_with("qmh_MULB_c"));
        EXPECT_EQ(std::string(kernel.entry).substr(4, 9), std::string(kernel.kernel).substr(4, 9));
    }
    EXPECT_EQ(entries.size(), 12u);
    EXPECT_EQ(kernels.size(), 12u);
}

}  // namespace
}  // namespace qmp
