// The vector transform of whole operands, in memory.
//
// Three sweeps: operand to columns (split, reduce, transform the columns), rows (transform, multiply
// pointwise, transform back), columns to product (transform back, recombine, add up). The first two can be
// done for some of the primes at a time, so that what the first writes is still near for the second.
#pragma once

#include <cstdint>

#include "multiply/multiply_context.h"
#include "multiply/vst/column_tables.h"
#include "multiply/vst/plan.h"
#include "multiply/vst/roots.h"

namespace qmp::vst {

// The cyclic or the negacyclic convolution of one length, with the tables and the scratch that it needs.
class Transform {
  public:
    // Throws LimitExceededException when the twiddle set does not cover the size and
    // BufferTooSmallException when the scratch is too small, in the function's name.
    Transform(const char* function, const Plan& plan, bool negacyclic, const MultiplyContext& context);

    // How many tasks it really runs with.
    std::uint64_t tasks() const { return tasks_; }

    // Some of the primes; the matrices passed with it are those of `begin`, followed by the next ones'.
    struct PrimeRange {
        std::uint32_t begin, end;
    };
    PrimeRange all_primes() const { return {0, plan_.primes()}; }

    // Operand to columns. `bytes` of operand; everything above is zero.
    void split(double* matrix, const void* operand, std::uint64_t bytes) const;
    // The same for two operands of one product, in one go.
    void split(PrimeRange primes, double* matrix_a, const void* a, std::uint64_t bytes_a, double* matrix_b,
               const void* b, std::uint64_t bytes_b) const;

    // Rows. What is done to them: each operand's transform where it is still to do, and the product, a * b,
    // transformed back, in a's place. With `square_b` b's rows take the place of a's first. b may be a; its
    // own transform is not to do then.
    struct RowWork {
        bool transform_a, transform_b, multiply;
        bool square_b = false;
    };
    void rows(PrimeRange primes, double* a, double* b, RowWork work) const;

    // Columns to product: the bytes [first, end) of the product to `destination`; those near `first` may
    // lack a carry from below it. The convolution is cyclic: what lies beyond it comes again at its start.
    // ConvolutionFailedException when a coefficient is larger than operands can make it.
    void merge(unsigned char* destination, std::uint64_t first, std::uint64_t end, double* matrix) const;
    // All bytes of the residue modulo R^n + 1; true when it is R^n, and the bytes are zero then.
    bool merge_negacyclic(unsigned char* destination, double* matrix) const;

  private:
    struct Window;
    struct LeafRoots;

    // body(workspace, begin, end) for ranges of [0, units), each with a workspace of its own.
    template <typename Body>
    void for_units(std::uint64_t units, Body body) const;
    const PrimeConstants& constants(std::uint32_t prime) const;

    void prepare_leaf_roots() const;
    // For the row's leaves and layers: e(a / its points), a the row's angle, or its inverse.
    double row_root(std::uint32_t prime, std::uint64_t row, bool inverse) const;
    void split_tile(PrimeRange primes, double* matrix, const void* operand, std::uint64_t bytes,
                    std::uint64_t tile, double* workspace) const;
    // a, b: the matrices of the prime.
    void group_of_rows(double* a, double* b, RowWork work, std::uint32_t prime, std::uint64_t group,
                       double* workspace) const;
    double merge_tile(const Window& window, const double* matrix, std::uint64_t tile,
                      double* workspace) const;
    std::int64_t merge_window(const Window& window, const double* matrix, std::uint64_t (&top)[4]) const;

    const char* function_;
    const Plan& plan_;
    bool negacyclic_;
    const MultiplyContext& context_;
    const ColumnTables* tables_;
    const TransformKernels& kernels_;
    const ConversionKernels& conversion_;
    std::uint64_t tasks_;
    double* leaf_roots_;  // [direction][prime][leaf]
    std::uint64_t* spills_;
    double* workspaces_;
};

}  // namespace qmp::vst
