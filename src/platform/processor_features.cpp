#include "platform/processor_features.h"

#include <cstring>
#include <string_view>

namespace qmp {
namespace {

constexpr std::uint32_t os_saves_extended_state = 27;  // bit of leaf 1 ECX

// XGETBV by its mnemonic: the intrinsic would need a compiler flag.
std::uint64_t read_xcr0() {
    std::uint32_t low;
    std::uint32_t high;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return (static_cast<std::uint64_t>(high) << 32) | low;
}

bool bit(std::uint32_t word, int number) {
    return (word >> number & 1) != 0;
}

bool is_vendor(const CpuidLeaf& leaf_0, std::string_view name) {
    const std::uint32_t words[3] = {leaf_0.ebx, leaf_0.edx, leaf_0.ecx};
    return std::memcmp(words, name.data(), sizeof words) == 0;
}

void set_leaf_1_features(ProcessorFeatures& features, const CpuidLeaf& leaf) {
    features.mmx = bit(leaf.edx, 23);
    features.sse = bit(leaf.edx, 25);
    features.sse2 = bit(leaf.edx, 26);
    features.sse3 = bit(leaf.ecx, 0);
    features.ssse3 = bit(leaf.ecx, 9);
    features.fma3 = bit(leaf.ecx, 12);
    features.sse41 = bit(leaf.ecx, 19);
    features.sse42 = bit(leaf.ecx, 20);
    features.aes = bit(leaf.ecx, 25);
    features.avx = bit(leaf.ecx, 28);
    features.rdrand = bit(leaf.ecx, 30);
}

void set_leaf_7_features(ProcessorFeatures& features, const CpuidLeaf& leaf) {
    features.bmi1 = bit(leaf.ebx, 3);
    features.avx2 = bit(leaf.ebx, 5);
    features.bmi2 = bit(leaf.ebx, 8);
    features.mpx = bit(leaf.ebx, 14);
    features.avx512f = bit(leaf.ebx, 16);
    features.avx512dq = bit(leaf.ebx, 17);
    features.rdseed = bit(leaf.ebx, 18);
    features.adx = bit(leaf.ebx, 19);
    features.avx512ifma = bit(leaf.ebx, 21);
    features.avx512pf = bit(leaf.ebx, 26);
    features.avx512er = bit(leaf.ebx, 27);
    features.avx512cd = bit(leaf.ebx, 28);
    features.sha = bit(leaf.ebx, 29);
    features.avx512bw = bit(leaf.ebx, 30);
    features.avx512vl = bit(leaf.ebx, 31);
    features.prefetchwt1 = bit(leaf.ecx, 0);
    features.avx512vbmi = bit(leaf.ecx, 1);
}

void set_extended_features(ProcessorFeatures& features, const CpuidLeaf& leaf) {
    features.abm = bit(leaf.ecx, 5);
    features.sse4a = bit(leaf.ecx, 6);
    features.prefetchw = bit(leaf.ecx, 8);
    features.xop = bit(leaf.ecx, 11);
    features.fma4 = bit(leaf.ecx, 16);
    features.x64 = bit(leaf.edx, 29);
}

}  // namespace

CpuidLeaves read_cpuid() {
    CpuidLeaves leaves;
    leaves.leaf_0 = read_cpuid_leaf(0);
    if (leaves.leaf_0.eax >= 1) leaves.leaf_1 = read_cpuid_leaf(1);
    if (leaves.leaf_0.eax >= 7) leaves.leaf_7 = read_cpuid_leaf(7);
    leaves.leaf_80000000 = read_cpuid_leaf(extended_cpuid_base);
    if (leaves.leaf_80000000.eax >= extended_cpuid_base + 1) leaves.leaf_80000001 = read_cpuid_leaf(extended_cpuid_base + 1);
    if (bit(leaves.leaf_1.ecx, os_saves_extended_state)) leaves.xcr0 = read_xcr0();
    return leaves;
}

ProcessorFeatures features_of(const CpuidLeaves& leaves) {
    ProcessorFeatures features;
    features.amd = is_vendor(leaves.leaf_0, "AuthenticAMD");
    features.intel = is_vendor(leaves.leaf_0, "GenuineIntel");
    if (leaves.leaf_0.eax >= 1) {
        set_leaf_1_features(features, leaves.leaf_1);
        constexpr std::uint64_t avx_state = 0x06;     // XMM, YMM
        constexpr std::uint64_t avx512_state = 0xe6;  // and the masks and the two parts of ZMM
        const bool saved = bit(leaves.leaf_1.ecx, os_saves_extended_state) && features.avx;
        features.os_avx = saved && (leaves.xcr0 & avx_state) == avx_state;
        features.os_avx512 = saved && (leaves.xcr0 & avx512_state) == avx512_state;
    }
    if (leaves.leaf_0.eax >= 7) set_leaf_7_features(features, leaves.leaf_7);
    if (leaves.leaf_80000000.eax >= extended_cpuid_base + 1) set_extended_features(features, leaves.leaf_80000001);
    return features;
}

ProcessorFeatures detect_features() {
    return features_of(read_cpuid());
}

const ProcessorFeatures& processor_features() {
    static const ProcessorFeatures features = detect_features();
    return features;
}

}  // namespace qmp
