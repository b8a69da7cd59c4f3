#include "multiply/ntt64/crt_constants.h"

#include "multiply/ntt64/field.h"

namespace qmp::ntt64 {
namespace {

// words[0 .. n + 1) = words[0 .. n) * factor
void multiply_by(std::uint64_t* words, std::uint32_t n, std::uint64_t factor) {
    Word carry = 0;
    for (std::uint32_t i = 0; i < n; ++i) {
        const DoubleWord t = static_cast<DoubleWord>(words[i]) * factor + carry;
        words[i] = low_word(t);
        carry = high_word(t);
    }
    words[n] = carry;
}

}  // namespace

CrtConstants form_crt_constants(const Plan& plan) {
    const std::uint32_t n = plan.size.primes;
    CrtConstants constants{};
    constants.product[0] = 1;
    for (std::uint32_t i = 0; i < n; ++i) {
        constants.primes[i] = plan.primes->primes[i].value;
        if (i == 0) {
            constants.product[0] = constants.primes[0];
        } else {
            multiply_by(constants.product, i, constants.primes[i]);
        }
    }
    for (std::uint32_t i = 0; i < n; ++i) {
        const Field field(constants.primes[i]);
        std::uint64_t* cofactor = constants.cofactors[i];
        // The number of points, times M_p.
        std::uint64_t scale = field.element(plan.points);
        std::uint32_t length = 0;
        cofactor[0] = 1;
        for (std::uint32_t j = 0; j < n; ++j) {
            if (j == i) continue;
            if (length == 0) {
                cofactor[length++] = constants.primes[j];
            } else {
                multiply_by(cofactor, length++, constants.primes[j]);
            }
            scale = field.mul(scale, field.element(constants.primes[j]));
        }
        // An element is its value times 2^64, which makes up for the division of the products.
        constants.factors[i] = field.twiddle(field.element(field.invert(scale)));
    }
    constexpr double word = 18446744073709551616.0;
    constants.inverse_top = 1 / (static_cast<double>(constants.product[n - 1]) +
                                 static_cast<double>(constants.product[n - 2]) / word);
    return constants;
}

}  // namespace qmp::ntt64
