#include "sessions/benchmark_sizes.h"

#include <map>

namespace kelvara {
namespace {

constexpr std::uint64_t million = 1'000'000;
constexpr std::uint64_t billion = 1000 * million;
constexpr std::uint64_t trillion = 1000 * billion;

constexpr BenchmarkSize decimal_sizes[] = {
    {"25m", 25 * million},   {"50m", 50 * million},   {"100m", 100 * million},   {"250m", 250 * million},
    {"500m", 500 * million}, {"1b", billion},         {"2.5b", 5 * billion / 2}, {"5b", 5 * billion},
    {"10b", 10 * billion},   {"25b", 25 * billion},   {"50b", 50 * billion},     {"100b", 100 * billion},
    {"250b", 250 * billion}, {"500b", 500 * billion}, {"1t", trillion},          {"2.5t", 5 * trillion / 2},
};

constexpr std::uint64_t mega = std::uint64_t{1} << 20;
constexpr std::uint64_t giga = std::uint64_t{1} << 30;

constexpr BenchmarkSize binary_sizes[] = {
    {"1M", mega},       {"2M", 2 * mega},   {"4M", 4 * mega},     {"8M", 8 * mega},     {"16M", 16 * mega},
    {"32M", 32 * mega}, {"64M", 64 * mega}, {"128M", 128 * mega}, {"256M", 256 * mega}, {"512M", 512 * mega},
    {"1G", giga},       {"2G", 2 * giga},   {"4G", 4 * giga},     {"8G", 8 * giga},     {"16G", 16 * giga},
    {"32G", 32 * giga}, {"64G", 64 * giga}, {"128G", 128 * giga},
};

using SizeMap = std::map<std::string_view, const BenchmarkSize*>;

SizeMap make_sizes_by_name() {
    SizeMap sizes;
    for (const BenchmarkSize& size : decimal_sizes) sizes.emplace(size.name, &size);
    for (const BenchmarkSize& size : binary_sizes) sizes.emplace(size.name, &size);
    return sizes;
}

const SizeMap sizes_by_name = make_sizes_by_name();

}  // namespace

std::span<const BenchmarkSize> decimal_benchmark_sizes() {
    return decimal_sizes;
}

std::span<const BenchmarkSize> binary_benchmark_sizes() {
    return binary_sizes;
}

const BenchmarkSize* find_benchmark_size(std::string_view name) {
    const auto found = sizes_by_name.find(name);
    return found == sizes_by_name.end() ? nullptr : found->second;
}

bool is_binary_size(const BenchmarkSize& size) {
    for (const BenchmarkSize& binary : binary_sizes) {
        if (&binary == &size) return true;
    }
    return false;
}

}  // namespace kelvara
