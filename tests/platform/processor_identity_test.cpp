#include "platform/processor_identity.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using qmp::IdentityLeaves;

// A name of at most 48 characters, zeros behind it.
IdentityLeaves named(const std::string& name) {
    IdentityLeaves leaves;
    char text[48] = {};
    name.copy(text, sizeof text);
    std::memcpy(leaves.name.data(), text, sizeof text);
    return leaves;
}

std::string name_of(const std::string& name) {
    return qmp::processor_name_of(named(name));
}

TEST(ProcessorName, IsTheTextOfThreeLeaves) {
    EXPECT_EQ(name_of("AMD FX(tm)-8350 Eight-Core Processor"), "AMD FX(tm)-8350 Eight-Core Processor");
    const std::string full(48, 'x');
    EXPECT_EQ(name_of(full), full);
}

TEST(ProcessorName, LosesItsPadding) {
    EXPECT_EQ(name_of("   Intel(R) Core(TM) i7 CPU   920  @ 2.67GHz"),
              "Intel(R) Core(TM) i7 CPU 920 @ 2.67GHz");
    EXPECT_EQ(name_of("Processor               "), "Processor");
    EXPECT_EQ(name_of("    "), "");
}

TEST(ProcessorName, IsEmptyWithoutItsLeaves) {
    EXPECT_EQ(qmp::processor_name_of({}), "");
    EXPECT_EQ(qmp::base_frequency_of({}), 0u);
}

TEST(BaseFrequency, StandsAtTheEndOfSomeNames) {
    EXPECT_EQ(qmp::base_frequency_in_name("Intel(R) Core(TM) i7-7700 CPU @ 3.60GHz"), 3'600'000'000u);
    EXPECT_EQ(qmp::base_frequency_in_name("x @ 2.667 GHz"), 2'667'000'000u);
    EXPECT_EQ(qmp::base_frequency_in_name("x @ 4GHz"), 4'000'000'000u);
    EXPECT_EQ(qmp::base_frequency_in_name("x @  800MHz "), 800'000'000u);
    EXPECT_EQ(qmp::base_frequency_in_name("@home @ 1.5GHz"), 1'500'000'000u);
}

TEST(BaseFrequency, IsUnknownInOtherNames) {
    for (const char* name :
         {"", "Intel(R) Xeon(R) Processor", "x @", "x @ ", "x @ GHz", "x @ .GHz", "x @ fast", "x @ 3.60",
          "x @ 3.60THz", "x 3.60GHz", "x @ 1.2.3GHz", "x @ 99999999999999999999GHz"}) {
        EXPECT_EQ(qmp::base_frequency_in_name(name), 0u) << name;
    }
}

TEST(BaseFrequency, ItsOwnLeafGoesBeforeTheName) {
    IdentityLeaves leaves = named("x @ 3.60GHz");
    EXPECT_EQ(qmp::base_frequency_of(leaves), 3'600'000'000u);
    leaves.leaf_16.eax = 0xabcd0000 | 2800;  // the upper half is reserved
    EXPECT_EQ(qmp::base_frequency_of(leaves), 2'800'000'000u);
    leaves.leaf_16.eax = 0xabcd0000;
    EXPECT_EQ(qmp::base_frequency_of(leaves), 3'600'000'000u);
}

TEST(ProcessorName, OfThisProcessorIsPlainText) {
    const std::string name = qmp::processor_name_of(qmp::read_identity_leaves());
    EXPECT_FALSE(name.empty());
    for (const char c : name) EXPECT_TRUE(c >= ' ' && c <= '~') << name;
}

}  // namespace
