// What the multiplication of this build is made of, for the screens that show it: the kernels of every
// family, the tables that choose among the algorithms, the thresholds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qmp {

struct KernelFamily {
    std::string name;
    // The kernels that this build has, best first: "f64v1: x64 FMA4 ~ Vessa".
    std::vector<std::string> kernels;
    // Whether sizes are searched in a list tuned for this build's processor first.
    bool specialised_limit_table = false;
};

// The floating-point transform, the transforms modulo primes, the vector transform.
std::vector<KernelFamily> kernel_families();

// A function of the basecase that the rest of the library calls, and the kernel behind it.
struct BasecaseKernel {
    const char* entry;
    const char* kernel;
};
std::vector<BasecaseKernel> basecase_kernels();

struct BasecaseThreshold {
    const char* name;     // "c64i_mul: Basecase - Karatsuba"
    std::uint64_t words;  // of one operand, from which the second of the two is used
};
std::vector<BasecaseThreshold> basecase_thresholds();

}  // namespace qmp
