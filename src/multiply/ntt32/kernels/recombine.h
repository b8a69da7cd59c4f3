// From residues to coefficients by the Chinese remainder theorem, and on to the bytes of the product.
//
// A coefficient is C = sum y(i) P / p(i) - q P with y(i) = x(i) (P / p(i))^-1 modulo p(i) and
// q = floor(sum y(i) / p(i)). Sums are formed digit by digit, 28 bits each: nine products of 31 and 28 bits
// stay below 2^63. The quotient comes out of sums in units of 2^-60, rounded down by less than 9 * 2^-29 in
// all; 2^-25 is added, which leads to the right q as long as C / P < 1 - 2^-25 (NUMERICS.md).
#pragma once

#include "multiply/ntt32/kernels/residues.h"

namespace {

using qmp::ntt32::column_group;
using qmp::ntt32::digit_bits;
using qmp::ntt32::RecombineJob;
using qmp::ntt32::RecombineResult;

template <int Primes>
struct CoefficientShape {
    static constexpr int digits = (31 * Primes + digit_bits - 1) / digit_bits;
    static constexpr int words = (31 * Primes + 63) / 64;
    static constexpr int point_bits = 16 * (Primes - 1);
    static constexpr int top_bit = 32 * (Primes - 1);  // of the square of a point
};

// The 64-bit words of numbers that are given in digits.
template <typename V, int Digits, int Words>
KERNEL_INLINE void pack_digits(typename V::Half (&words)[Words], const typename V::Half (&digits)[Digits]) {
    KERNEL_UNROLL(5)
    for (int w = 0; w < Words; ++w) {
        words[w] = V::half_set(0);
        KERNEL_UNROLL(10)
        for (int d = 0; d < Digits; ++d) {
            const int shift = digit_bits * d - 64 * w;
            if (shift <= -digit_bits || shift >= 64) continue;
            words[w] = V::half_or(
                words[w], shift < 0 ? V::half_right(digits[d], -shift) : V::half_left(digits[d], shift));
        }
    }
}

// words[i] of the coefficients from y.
template <typename V, int Primes>
KERNEL_INLINE void form_coefficients(typename V::Half (&words)[CoefficientShape<Primes>::words],
                                     const typename V::Half (&y)[Primes], const RecombineJob& job) {
    constexpr int digits = CoefficientShape<Primes>::digits;
    using Half = typename V::Half;
    Half quotient = V::half_set(std::uint64_t{1} << 35);
    KERNEL_UNROLL(9)
    for (int i = 0; i < Primes; ++i) {
        quotient = V::half_add(quotient, V::half_mul_low(y[i], V::half_set(job.reciprocals[i])));
    }
    quotient = V::half_right(quotient, 60);

    const Half mask = V::half_set((std::uint64_t{1} << digit_bits) - 1);
    Half carry = V::half_set(0);
    Half digit[digits];
    KERNEL_UNROLL(10)
    for (int d = 0; d < digits; ++d) {
        Half sum = V::half_add(carry, V::half_mul_low(quotient, V::half_set(job.complement[d])));
        KERNEL_UNROLL(9)
        for (int i = 0; i < Primes; ++i) {
            sum = V::half_add(sum, V::half_mul_low(y[i], V::half_set(job.cofactors[i][d])));
        }
        digit[d] = V::half_and(sum, mask);
        carry = V::half_right(sum, digit_bits);
    }
    pack_digits<V>(words, digit);
}

// The sum of the coefficients, each shifted by one point more than the last, leaves a point at a time.
template <int Primes>
class PointStream {
    using Shape = CoefficientShape<Primes>;
    static constexpr int words = Shape::words;

  public:
    explicit PointStream(unsigned char* product) : product_(product) {}

    KERNEL_INLINE void add(const std::uint64_t* coefficient, std::uint64_t stride) {
        unsigned char carry = 0;
        KERNEL_UNROLL(5)
        for (int i = 0; i < words; ++i) {
            const unsigned __int128 sum =
                static_cast<unsigned __int128>(sum_[i]) + coefficient[stride * i] + carry;
            sum_[i] = static_cast<std::uint64_t>(sum);
            carry = static_cast<unsigned char>(sum >> 64);
        }
        constexpr int top_word = Shape::top_bit / 64;
        std::uint64_t top = coefficient[stride * top_word];
        if (Shape::top_bit % 64 != 0) {
            top >>= Shape::top_bit % 64;
            if (top_word + 1 < words)
                top |= coefficient[stride * (top_word + 1)] << (64 - Shape::top_bit % 64);
        }
        if (top > largest_) largest_ = top;
        __builtin_memcpy(product_, sum_, Shape::point_bits / 8);
        product_ += Shape::point_bits / 8;
        KERNEL_UNROLL(5)
        for (int i = 0; i < words; ++i) {
            const int from = i + Shape::point_bits / 64;
            constexpr int shift = Shape::point_bits % 64;
            const std::uint64_t low = from < words ? sum_[from] : 0;
            const std::uint64_t high = from + 1 < words ? sum_[from + 1] : 0;
            sum_[i] = shift == 0 ? low : low >> shift | high << (64 - shift) % 64;
        }
    }
    RecombineResult result() const {
        return {{sum_[0], sum_[1], words > 2 ? sum_[2 % words] : 0}, largest_};
    }

  private:
    unsigned char* product_;
    std::uint64_t sum_[words] = {};
    std::uint64_t largest_ = 0;
};

template <typename V, int Primes>
RecombineResult recombine_points(const RecombineJob& job, std::uint64_t begin, std::uint64_t end) {
    constexpr int words = CoefficientShape<Primes>::words;
    constexpr std::uint64_t most_rows = 7;
    const std::uint64_t m = job.multiplier;
    PointStream<Primes> stream(job.product + CoefficientShape<Primes>::point_bits / 8 * m * begin);
    // Word i of the coefficient of row j and column begin + h + halves * l: [j][h][i][l].
    alignas(64) std::uint64_t coefficients[most_rows][V::halves][words][V::half_lanes];
    for (std::uint64_t column = begin; column < end; column += V::lanes) {
        for (std::uint64_t j = 0; j < m; ++j) {
            typename V::Narrow y[Primes];
            KERNEL_UNROLL(9)
            for (std::uint64_t i = 0; i < Primes; ++i) {
                const Residues<V> residues(job.moduli[i]);
                y[i] = residues.mul(V::load(job.rows + job.row_stride * (i * m + j) + column),
                                    broadcast<V>(job.scales[i]));
            }
            for (int h = 0; h < V::halves; ++h) {
                typename V::Half half[Primes], formed[words];
                KERNEL_UNROLL(9)
                for (int i = 0; i < Primes; ++i) half[i] = V::half(y[i], h);
                form_coefficients<V, Primes>(formed, half, job);
                KERNEL_UNROLL(5)
                for (int i = 0; i < words; ++i) V::half_store(coefficients[j][h][i], formed[i]);
            }
        }
        for (int l = 0; l < V::half_lanes; ++l) {
            for (int h = 0; h < V::halves; ++h) {
                for (std::uint64_t j = 0; j < m; ++j) {
                    stream.add(&coefficients[j][h][0][l], V::half_lanes);
                }
            }
        }
    }
    return stream.result();
}

}  // namespace
