// Discrete Fourier transforms of a few numbers in registers.
//
// Forwards X[s] = sum over t of x[t] * e^(2 pi i s t / n), backwards with the conjugate root and without
// the factor 1/n. Transforms of a power of two leave (and take back) X in bit-reversed order; those of an
// odd length keep the natural order.
#pragma once

#include "multiply/fft/kernels/complex.h"

namespace {

constexpr double sqrt_half = 0.70710678118654752440;

template <typename V>
KERNEL_INLINE void forward_dft2(Complex<V>& a, Complex<V>& b) {
    const Complex<V> t = a - b;
    a = a + b;
    b = t;
}

template <typename V>
KERNEL_INLINE void forward_dft4(Complex<V>& a, Complex<V>& b, Complex<V>& c, Complex<V>& d) {
    const Complex<V> t0 = a + c, t1 = a - c, t2 = b + d, t3 = b - d;
    a = t0 + t2;
    b = t0 - t2;
    c = add_i(t1, t3);
    d = sub_i(t1, t3);
}

template <typename V>
KERNEL_INLINE void inverse_dft4(Complex<V>& a, Complex<V>& b, Complex<V>& c, Complex<V>& d) {
    const Complex<V> t0 = a + b, t1 = a - b, t2 = c + d, t3 = c - d;
    a = t0 + t2;
    b = sub_i(t1, t3);
    c = t0 - t2;
    d = add_i(t1, t3);
}

// (1 + i) x and (1 - i) x, which are sqrt(2) e^(i pi / 4) x and sqrt(2) e^(-i pi / 4) x
template <typename V>
KERNEL_INLINE Complex<V> long_eighth_turn(Complex<V> x) {
    return {V::sub(x.re, x.im), V::add(x.re, x.im)};
}

template <typename V>
KERNEL_INLINE Complex<V> long_eighth_turn_back(Complex<V> x) {
    return {V::add(x.re, x.im), V::sub(x.im, x.re)};
}

// a + h b, a - h b, a + i h b and a - i h b with h = sqrt(1/2): what makes the long turns right costs nothing
// in the additions that follow them.
template <typename V>
KERNEL_INLINE Complex<V> add_shortened(Complex<V> a, Complex<V> b) {
    const auto h = V::set(sqrt_half);
    return {V::mul_add(b.re, h, a.re), V::mul_add(b.im, h, a.im)};
}

template <typename V>
KERNEL_INLINE Complex<V> sub_shortened(Complex<V> a, Complex<V> b) {
    const auto h = V::set(sqrt_half);
    return {V::neg_mul_add(b.re, h, a.re), V::neg_mul_add(b.im, h, a.im)};
}

template <typename V>
KERNEL_INLINE Complex<V> add_i_shortened(Complex<V> a, Complex<V> b) {
    const auto h = V::set(sqrt_half);
    return {V::neg_mul_add(b.im, h, a.re), V::mul_add(b.re, h, a.im)};
}

template <typename V>
KERNEL_INLINE Complex<V> sub_i_shortened(Complex<V> a, Complex<V> b) {
    const auto h = V::set(sqrt_half);
    return {V::mul_add(b.im, h, a.re), V::neg_mul_add(b.re, h, a.im)};
}

template <bool Fused, typename V>
KERNEL_INLINE void sum_difference(Complex<V> a, Complex<V> b, Complex<V>& sum, Complex<V>& difference) {
    if constexpr (Fused) {
        auto one = V::set(1.0);
        V::pin(one);
        sum = {V::mul_add(b.re, one, a.re), V::mul_add(b.im, one, a.im)};
        difference = {V::neg_mul_add(b.re, one, a.re), V::neg_mul_add(b.im, one, a.im)};
    } else {
        sum = a + b;
        difference = a - b;
    }
}

// `Fused`: the first layer as multiply-adds with a factor of one, where other units than those for additions
// would be idle.
template <bool Fused = false, typename V>
KERNEL_INLINE void forward_dft8(Complex<V> (&x)[8]) {
    Complex<V> e0, e1, e2, e3, o0, o1, o2, o3;  // o[t] before its turn by e^(i pi t / 4)
    sum_difference<Fused>(x[0], x[4], e0, o0);
    sum_difference<Fused>(x[1], x[5], e1, o1);
    sum_difference<Fused>(x[2], x[6], e2, o2);
    sum_difference<Fused>(x[3], x[7], e3, o3);
    forward_dft4(e0, e1, e2, e3);
    x[0] = e0, x[1] = e1, x[2] = e2, x[3] = e3;
    const Complex<V> t0 = add_i(o0, o2), t1 = sub_i(o0, o2);
    const Complex<V> t2 = long_eighth_turn(add_i(o1, o3)), t3 = long_eighth_turn(sub_i(o1, o3));
    x[4] = add_shortened(t0, t2);
    x[5] = sub_shortened(t0, t2);
    x[6] = add_i_shortened(t1, t3);
    x[7] = sub_i_shortened(t1, t3);
}

template <bool Fused = false, typename V>
KERNEL_INLINE void inverse_dft8(Complex<V> (&x)[8]) {
    Complex<V> s0, s1, s2, s3, t0, t1, t2, t3;
    sum_difference<Fused>(x[0], x[1], s0, s2);
    sum_difference<Fused>(x[2], x[3], s1, s3);
    sum_difference<Fused>(x[4], x[5], t0, t2);
    sum_difference<Fused>(x[6], x[7], t1, t3);
    const Complex<V> e0 = s0 + s1, e1 = sub_i(s2, s3), e2 = s0 - s1, e3 = add_i(s2, s3);
    // o[t] up to quarter turns and, for odd t, the factor sqrt(2)
    const Complex<V> o0 = t0 + t1;
    const Complex<V> o2 = t0 - t1;
    const Complex<V> o1 = long_eighth_turn_back(sub_i(t2, t3));
    const Complex<V> o3 = long_eighth_turn_back(add_i(t2, t3));
    x[0] = e0 + o0, x[4] = e0 - o0;
    x[1] = add_shortened(e1, o1), x[5] = sub_shortened(e1, o1);
    x[2] = sub_i(e2, o2), x[6] = add_i(e2, o2);
    x[3] = sub_i_shortened(e3, o3), x[7] = add_i_shortened(e3, o3);
}

// The transform of V::lanes numbers.
template <bool Inverse, typename V>
KERNEL_INLINE void dft_lanes(Complex<V> (&x)[V::lanes]) {
    if constexpr (V::lanes == 2) {
        forward_dft2(x[0], x[1]);
    } else if constexpr (V::lanes == 4) {
        if constexpr (Inverse) {
            inverse_dft4(x[0], x[1], x[2], x[3]);
        } else {
            forward_dft4(x[0], x[1], x[2], x[3]);
        }
    } else {
        if constexpr (Inverse) {
            inverse_dft8<true>(x);
        } else {
            forward_dft8<true>(x);
        }
    }
}

// cos and sin of 2 pi s / R for s = 1 .. (R - 1) / 2.
template <int R>
struct OddRoots;

template <>
struct OddRoots<3> {
    static constexpr double cosine[1] = {-0.5};
    static constexpr double sine[1] = {0.86602540378443864676};
};
template <>
struct OddRoots<5> {
    static constexpr double cosine[2] = {0.30901699437494742410, -0.80901699437494742410};
    static constexpr double sine[2] = {0.95105651629515357212, 0.58778525229247312917};
};
template <>
struct OddRoots<7> {
    static constexpr double cosine[3] = {0.62348980185873353053, -0.22252093395631440429,
                                         -0.90096886790241912624};
    static constexpr double sine[3] = {0.78183148246802980871, 0.97492791218182360702,
                                       0.43388373911755812048};
};

// The transform of R = 3, 5 or 7 numbers: the sums and differences of x[t] and x[R - t] meet the cosines
// and the sines separately.
template <int R, bool Inverse, typename V>
KERNEL_INLINE void dft_odd(Complex<V> (&x)[R]) {
    constexpr int half = (R - 1) / 2;
    Complex<V> sum[half], difference[half];
    KERNEL_UNROLL(4)
    for (int t = 0; t < half; ++t) {
        sum[t] = x[t + 1] + x[R - 1 - t];
        difference[t] = x[t + 1] - x[R - 1 - t];
    }
    const Complex<V> first = x[0];
    KERNEL_UNROLL(4)
    for (int t = 0; t < half; ++t) x[0] = x[0] + sum[t];
    KERNEL_UNROLL(4)
    for (int s = 1; s <= half; ++s) {
        Complex<V> even = first;
        Complex<V> odd = {V::set(0.0), V::set(0.0)};
        KERNEL_UNROLL(4)
        for (int t = 1; t <= half; ++t) {
            const int turns = s * t % R;
            const int index = turns <= half ? turns : R - turns;
            const auto c = V::set(OddRoots<R>::cosine[index - 1]);
            const auto d =
                V::set(turns <= half ? OddRoots<R>::sine[index - 1] : -OddRoots<R>::sine[index - 1]);
            even = {V::mul_add(sum[t - 1].re, c, even.re), V::mul_add(sum[t - 1].im, c, even.im)};
            if (t == 1) {
                odd = {V::mul(difference[0].re, d), V::mul(difference[0].im, d)};
            } else {
                odd = {V::mul_add(difference[t - 1].re, d, odd.re),
                       V::mul_add(difference[t - 1].im, d, odd.im)};
            }
        }
        x[s] = add_turned<Inverse>(even, odd);
        x[R - s] = sub_turned<Inverse>(even, odd);
    }
}

}  // namespace
