// Kernels are written as small functions that must end up in one loop body.
#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// With a check at every access, fully unrolled bodies would take minutes to compile.
#define KERNEL_INLINE inline
#define KERNEL_INLINE_LAMBDA
#define KERNEL_UNROLLED __attribute__((noinline))
#define KERNEL_UNROLL(Count)
#else
#define KERNEL_INLINE inline __attribute__((always_inline))
#define KERNEL_INLINE_LAMBDA __attribute__((always_inline))
#define KERNEL_UNROLLED KERNEL_INLINE
// Before a loop of a known number of rounds.
#define KERNEL_PRAGMA(Text) _Pragma(#Text)
#define KERNEL_UNROLL(Count) KERNEL_PRAGMA(GCC unroll Count)
#endif

// A function that is compiled for itself: in the midst of its callers, or with its parameters taken apart, its
// loops would get fewer registers.
#if defined(__clang__)
#define KERNEL_FUNCTION __attribute__((noinline))
#else
#define KERNEL_FUNCTION __attribute__((noipa))
#endif
