#include "multiply/kernel_listing.h"

#include "multiply/basecase/karatsuba.h"
#include "multiply/basecase/kernels.h"
#include "multiply/fft/kernels/kernels.h"
#include "multiply/hybrid_ntt/hybrid_params.h"
#include "multiply/ntt32/kernels/kernels.h"
#include "multiply/ntt32/ntt32_params.h"
#include "multiply/ntt64/kernels/kernels.h"
#include "multiply/ntt64/ntt64_params.h"
#include "multiply/vst/kernels/kernels.h"
#include "multiply/vst/kernels/transform_kernels.h"
#include "multiply/vst/vst_params.h"

namespace qmp {
namespace {

// Naming a kernel here takes its address: what is listed is linked.
template <auto kernel>
std::string exists(const char* label) {
    const auto volatile address = kernel;  // volatile, so that the reference stays for the linker
    static_cast<void>(address);
    return label;
}

#define QMP_BASECASE_KERNEL(entry, kernel)                                         \
    BasecaseKernel {                                                               \
        (static_cast<void>(&entry), #entry), (static_cast<void>(&kernel), #kernel) \
    }

}  // namespace

std::vector<KernelFamily> kernel_families() {
    return {
        {"FFTv3 (Short Vector FMA)",
         {exists<&fft::kernels_avx512>("f64v1: x64 AVX-512"), exists<&fft::kernels_avx2>("f64v1: x64 AVX2"),
          exists<&fft::kernels_fma4>("f64v1: x64 FMA4 ~ Vessa"),
          exists<&fft::kernels_sse2>("f64v1: x64 SSE2"), exists<&fft::kernels_scalar>("f64v1: x64 Native")}},
        {"NTT32",
         {exists<&ntt32::kernels_avx512>("i32v2: x64 AVX-512"),
          exists<&ntt32::kernels_avx2>("i32v2: x64 AVX2"),
          exists<&ntt32::kernels_scalar>("i32v2: x64 Native")},
         !ntt32::limit_tables.specialised.empty()},
        {"NTT64",
         {exists<&ntt64::kernels_avx512>("i64v1: x64 AVX-512"),
          exists<&ntt64::kernels_scalar>("i64v1: x64 Native")},
         !ntt64::limit_tables.specialised.empty()},
        {"HNTs (Hybrid NTT)", {"w128:  x64 Native"}, !hybrid_ntt::specialised_list().empty()},
        {"VSTv2",
         {exists<&vst::transform_avx512>("f64v1: x64 AVX-512"),
          exists<&vst::transform_avx2>("f64v1: x64 AVX2"),
          exists<&vst::transform_fma4>("f64v1: x64 XOP ~ Vessa"),
          exists<&vst::transform_sse2>("f64v1: x64 SSE2"),
          exists<&vst::transform_scalar>("f64v1: x64 Native")},
         !vst::limit_tables.specialised.empty()},
    };
}

std::vector<BasecaseKernel> basecase_kernels() {
    return {
        QMP_BASECASE_KERNEL(qmb_MULB_c32i_sqrB, qmh_MULB_c32i_v0_sqrB_Default_mul64_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c32i_elmB, qmh_MULB_c32i_v0_elmB_Default_mul64_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c32i_mulB, qmh_MULB_c32i_v0_mulB_Default_mul64_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c32i_sqr, qmh_MULB_c32i_v0_sqrK_Default_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c32i_elm, qmh_MULB_c32i_v0_elmK_Default_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c32i_mul, qmh_MULB_c32i_v0_mulK_Default_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c64i_sqrB, qmh_MULB_c64i_v0_sqrB_Default_mul64_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c64i_elmB, qmh_MULB_c64i_v0_elmB_Default_mul64_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c64i_mulB, qmh_MULB_c64i_v0_mulB_Default_mul64_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c64i_sqr, qmh_MULB_c64i_v0_sqrK_Default_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c64i_elm, qmh_MULB_c64i_v0_elmK_Default_u0),
        QMP_BASECASE_KERNEL(qmb_MULB_c64i_mul, qmh_MULB_c64i_v0_mulK_Default_u0),
    };
}

std::vector<BasecaseThreshold> basecase_thresholds() {
    return {
        {"c32i_sqr: Basecase - Karatsuba", c32i_sqr_threshold},
        {"c32i_mul: Basecase - Karatsuba", c32i_mul_threshold},
        {"c64i_sqr: Basecase - Karatsuba", c64i_sqr_threshold},
        {"c64i_mul: Basecase - Karatsuba", c64i_mul_threshold},
    };
}

}  // namespace qmp
