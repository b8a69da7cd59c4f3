#include <gtest/gtest.h>

#include <cstdio>

#include "support/random_words.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::printf("Seed %llu, multiplier %llu\n", static_cast<unsigned long long>(kelvara_test::seed()),
                static_cast<unsigned long long>(kelvara_test::multiplier()));
    return RUN_ALL_TESTS();
}
