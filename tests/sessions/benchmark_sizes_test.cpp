#include "sessions/benchmark_sizes.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvara {
namespace {

std::string listed(std::span<const BenchmarkSize> sizes) {
    std::string text;
    for (const BenchmarkSize& size : sizes) {
        text += std::string(size.name) + "=" + std::to_string(size.digits) + " ";
    }
    return text;
}

TEST(BenchmarkSizes, DecimalSizes) {
    EXPECT_EQ(listed(decimal_benchmark_sizes()),
              "25m=25000000 50m=50000000 100m=100000000 250m=250000000 500m=500000000 1b=1000000000 "
              "2.5b=2500000000 5b=5000000000 10b=10000000000 25b=25000000000 50b=50000000000 "
              "100b=100000000000 250b=250000000000 500b=500000000000 1t=1000000000000 2.5t=2500000000000 ");
}

TEST(BenchmarkSizes, PowersOfTwo) {
    const std::string names[] = {"1M",   "2M", "4M", "8M", "16M", "32M", "64M", "128M", "256M",
                                 "512M", "1G", "2G", "4G", "8G",  "16G", "32G", "64G",  "128G"};
    std::uint64_t digits = 1'048'576;
    ASSERT_EQ(binary_benchmark_sizes().size(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i, digits *= 2) {
        EXPECT_EQ(binary_benchmark_sizes()[i].name, names[i]);
        EXPECT_EQ(binary_benchmark_sizes()[i].digits, digits);
    }
    EXPECT_EQ(binary_benchmark_sizes().back().digits, std::uint64_t{1} << 37);
}

TEST(BenchmarkSizes, EveryNameFindsItsEntryAndItsList) {
    for (const BenchmarkSize& size : decimal_benchmark_sizes()) {
        EXPECT_EQ(find_benchmark_size(size.name), &size);
        EXPECT_FALSE(is_binary_size(size));
    }
    for (const BenchmarkSize& size : binary_benchmark_sizes()) {
        EXPECT_EQ(find_benchmark_size(size.name), &size);
        EXPECT_TRUE(is_binary_size(size));
    }
}

TEST(BenchmarkSizes, NamesAreExact) {
    for (const char* name :
         {"", "25", "25M", "1m", "1B", "1g", "2.5", "2.5B", "25m ", " 25m", "256G", "5t"}) {
        EXPECT_EQ(find_benchmark_size(name), nullptr) << name;
    }
}

}  // namespace
}  // namespace kelvara
