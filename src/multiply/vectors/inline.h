// Kernels are written as small functions that must end up in one loop body.
#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// With a check at every access, fully unrolled bodies would take minutes to compile.
#define KERNEL_INLINE inline
#define KERNEL_INLINE_LAMBDA
#define KERNEL_UNROLLED __attribute__((noinline))
#else
#define KERNEL_INLINE inline __attribute__((always_inline))
#define KERNEL_INLINE_LAMBDA __attribute__((always_inline))
#define KERNEL_UNROLLED KERNEL_INLINE
#endif
