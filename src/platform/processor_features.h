// What the processor's identification instruction (CPUID) and the register of the extended state that the
// system saves (XCR0) say.
#pragma once

#include <cstdint>

#include "platform/cpuid.h"

namespace qmp {

struct ProcessorFeatures {
    bool amd = false, intel = false;
    bool os_64bit = true, os_avx = false, os_avx512 = false;
    bool mmx = false, x64 = false, abm = false, rdrand = false, rdseed = false, bmi1 = false, bmi2 = false;
    bool adx = false, mpx = false, prefetchw = false, prefetchwt1 = false;
    bool sse = false, sse2 = false, sse3 = false, ssse3 = false, sse41 = false, sse42 = false, sse4a = false;
    bool aes = false, sha = false;
    bool avx = false, xop = false, fma3 = false, fma4 = false, avx2 = false;
    bool avx512f = false, avx512pf = false, avx512er = false, avx512cd = false, avx512vl = false;
    bool avx512bw = false, avx512dq = false, avx512ifma = false, avx512vbmi = false;
};

// Everything that the features follow from. Leaves that a processor lacks stay zero.
struct CpuidLeaves {
    CpuidLeaf leaf_0;  // eax: the highest basic leaf; ebx, edx, ecx: the vendor's name
    CpuidLeaf leaf_1;
    CpuidLeaf leaf_7;         // sub-leaf 0
    CpuidLeaf leaf_80000000;  // eax: the highest extended leaf
    CpuidLeaf leaf_80000001;
    std::uint64_t xcr0 = 0;  // 0 when the system does not let programs read it
};

CpuidLeaves read_cpuid();
ProcessorFeatures features_of(const CpuidLeaves& leaves);

// Reads the processor each time.
ProcessorFeatures detect_features();
// Read once, for choosing kernels.
const ProcessorFeatures& processor_features();

}  // namespace qmp
