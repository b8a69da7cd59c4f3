// Transforms of rows, eight side by side.
//
// After the columns, row i holds a polynomial modulo x^columns - w^e, w the root of the transform's order
// over the columns and e the bit reversal of i. Multiplying coefficient j by the j-th power of the
// whole root's e-th power makes it one modulo x^columns - 1.
#pragma once

#include "multiply/ntt64/kernels/tree.h"

namespace {

// 2^64 times the power of the whole root that row `row` is turned by.
KERNEL_INLINE std::uint64_t turn_of_row(const qmp::ntt64::Matrix& matrix, const qmp::ntt64::Roots& roots,
                                        std::uint64_t row, const Modular<WordsScalar>& modular) {
    std::uint64_t turn = roots.one;
    // Bit i of the row is bit log_rows - 1 - i of the exponent; negacyclic exponents are 2e + 1.
    for (std::uint32_t i = 0; i < matrix.log_rows; ++i) {
        if (row >> i & 1) {
            turn = modular.mul_reduced(turn, roots.turns[matrix.log_rows - 1 - i + matrix.negacyclic]);
        }
    }
    return matrix.negacyclic ? modular.mul_reduced(turn, roots.turns[0]) : turn;
}

// Turns the eight rows from row `first`: item j, of eight words, by the j-th power of the row's turn.
template <typename V>
void turn_rows(const qmp::ntt64::Matrix& matrix, const qmp::ntt64::Roots& roots, std::uint64_t* data,
               std::uint64_t first) {
    using namespace qmp::ntt64;
    constexpr int chains = 4;  // powers of as many items, each chain stepping over the others
    const Modular<WordsScalar> scalar(roots);
    std::uint64_t powers[chains + 1][lanes];
    for (std::uint64_t l = 0; l < lanes; ++l) {
        const std::uint64_t turn = turn_of_row(matrix, roots, first + l, scalar);
        powers[0][l] = roots.one;
        for (int i = 0; i < chains; ++i) powers[i + 1][l] = scalar.mul_reduced(powers[i][l], turn);
    }
    const Modular<V> modular(roots);
    for (std::uint64_t l = 0; l < lanes; l += V::lanes) {
        typename V::Words power[chains];
        for (int i = 0; i < chains; ++i) power[i] = V::load(powers[i] + l);
        const auto step = V::load(powers[chains] + l);
        std::uint64_t* p = data + l;
        for (std::uint64_t j = 0; j < matrix.columns; j += chains) {
            KERNEL_UNROLL(4)
            for (int i = 0; i < chains; ++i, p += lanes) {
                V::store(p, modular.mul_reduced(V::load(p), power[i]));
                power[i] = modular.mul_reduced(power[i], step);
            }
        }
    }
}

// Splits a polynomial modulo x^(M h) - 1 into M modulo x^h - (root number t of M), in order of t; or
// the other way round with the inverse roots. `part` is 8 h words. Outputs t and M - t share the products
// by the half sum and the half difference of the roots t i and -t i.
template <typename V, int M>
void split_rows(const qmp::ntt64::Roots& roots, std::uint64_t* data, std::uint64_t part) {
    constexpr int half = M / 2;
    const Modular<V> modular(roots);
    for (std::uint64_t at = 0; at < part; at += V::lanes) {
        std::uint64_t* p = data + at;
        const auto first = V::load(p);
        typename V::Words sums[half], differences[half];
        auto total = first;
        KERNEL_UNROLL(3)
        for (int i = 0; i < half; ++i) {
            const auto a = V::load(p + (i + 1) * part), b = V::load(p + (M - 1 - i) * part);
            sums[i] = modular.add(a, b);
            differences[i] = modular.sub(a, b);
            total = modular.add(total, sums[i]);
        }
        V::store(p, total);
        for (int t = 0; t < half; ++t) {
            auto even = first, odd = V::set(0);
            KERNEL_UNROLL(3)
            for (int i = 0; i < half; ++i) {
                even = modular.add(even, modular.mul(sums[i], Factor<V>(roots.cosines[t][i])));
                odd = modular.add(odd, modular.mul(differences[i], Factor<V>(roots.sines[t][i])));
            }
            V::store(p + (t + 1) * part, modular.add(even, odd));
            V::store(p + (M - 1 - t) * part, modular.sub(even, odd));
        }
    }
}

template <typename V>
void split_rows_by_multiplier(const qmp::ntt64::Matrix& matrix, const qmp::ntt64::Roots& roots,
                              std::uint64_t* data, std::uint64_t part) {
    if (matrix.multiplier == 3) split_rows<V, 3>(roots, data, part);
    if (matrix.multiplier == 5) split_rows<V, 5>(roots, data, part);
    if (matrix.multiplier == 7) split_rows<V, 7>(roots, data, part);
}

template <typename V>
void forward_rows(const qmp::ntt64::Matrix& matrix, const qmp::ntt64::Roots& roots, std::uint64_t* data,
                  std::uint64_t begin, std::uint64_t end) {
    using namespace qmp::ntt64;
    const Tree<V> tree(matrix, roots);
    const std::uint64_t part = lanes << matrix.log_columns;
    for (std::uint64_t block = begin; block < end; ++block) {
        std::uint64_t* rows = data + block * lanes * matrix.columns;
        turn_rows<V>(matrix, roots, rows, lanes * block);
        split_rows_by_multiplier<V>(matrix, roots, rows, part);
        for (std::uint32_t t = 0; t < matrix.multiplier; ++t) {
            tree.forward(rows + t * part, matrix.log_columns, 0, t);
        }
    }
}

template <typename V>
void inverse_rows(const qmp::ntt64::Matrix& matrix, const qmp::ntt64::Roots& roots, std::uint64_t* a,
                  const std::uint64_t* b, std::uint64_t begin, std::uint64_t end) {
    using namespace qmp::ntt64;
    const Tree<V> tree(matrix, roots);
    const Modular<V> modular(roots);
    const std::uint64_t part = lanes << matrix.log_columns;
    for (std::uint64_t block = begin; block < end; ++block) {
        const std::uint64_t offset = block * lanes * matrix.columns;
        std::uint64_t* rows = a + offset;
        for (std::uint64_t i = 0; i < lanes * matrix.columns; i += V::lanes) {
            V::store(rows + i, modular.mul_reduced(V::load(rows + i), V::load(b + offset + i)));
        }
        for (std::uint32_t t = 0; t < matrix.multiplier; ++t) {
            tree.inverse(rows + t * part, matrix.log_columns, 0, t);
        }
        split_rows_by_multiplier<V>(matrix, roots, rows, part);
        turn_rows<V>(matrix, roots, rows, lanes * block);
    }
}

}  // namespace
