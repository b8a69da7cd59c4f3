#include "multiply/vst/merge_constants.h"

#include <cmath>

#include "errors/fatal.h"

namespace qmp::vst {
namespace {

using Wide = unsigned __int128;

// Non-negative, below 2^512.
class Number {
  public:
    explicit Number(std::uint64_t x) { words_[0] = x; }

    void multiply(std::uint64_t factor) {
        std::uint64_t carry = 0;
        for (std::uint64_t& word : words_) {
            const Wide product = Wide{word} * factor + carry;
            word = static_cast<std::uint64_t>(product);
            carry = static_cast<std::uint64_t>(product >> 64);
        }
    }
    std::uint64_t modulo(std::uint64_t divisor) const {
        std::uint64_t remainder = 0;
        for (std::size_t i = words_.size(); i-- > 0;) {
            remainder = static_cast<std::uint64_t>((Wide{remainder} << 64 | words_[i]) % divisor);
        }
        return remainder;
    }
    // The lowest bits, balanced, leave the number; the rest comes down.
    std::int64_t take_limb(std::uint32_t width) {
        const std::uint64_t unit = std::uint64_t{1} << width;
        const std::uint64_t low = words_[0] & (unit - 1);
        for (std::size_t i = 0; i < words_.size(); ++i) {
            const std::uint64_t above = i + 1 < words_.size() ? words_[i + 1] : 0;
            words_[i] = words_[i] >> width | above << (64 - width);
        }
        if (low < unit / 2) return static_cast<std::int64_t>(low);
        increment();
        return -static_cast<std::int64_t>(unit - low);
    }
    // All that is left; a double must hold it.
    double rest() const {
        for (std::size_t i = 1; i < words_.size(); ++i) {
            if (words_[i] != 0) assertion_failure("words_[i] == 0", "vst::Number::rest()", "");
        }
        if (words_[0] >> 53 != 0) assertion_failure("words_[0] < 2^53", "vst::Number::rest()", "");
        return static_cast<double>(words_[0]);
    }

  private:
    void increment() {
        for (std::uint64_t& word : words_) {
            if (++word != 0) break;
        }
    }

    std::array<std::uint64_t, 8> words_{};
};

std::uint64_t power(std::uint64_t base, std::uint64_t exponent, std::uint64_t prime) {
    Wide result = 1;
    for (Wide square = base % prime; exponent != 0; exponent /= 2, square = square * square % prime) {
        if (exponent % 2 != 0) result = result * square % prime;
    }
    return static_cast<std::uint64_t>(result);
}

double balanced(std::uint64_t residue, std::uint64_t prime) {
    return residue <= prime / 2 ? static_cast<double>(residue) : -static_cast<double>(prime - residue);
}

ReduceConstants reduce_constants(std::uint64_t prime) {
    ReduceConstants constants{};
    constants.prime = static_cast<double>(prime);
    constants.inverse = 1 / constants.prime;
    for (std::uint32_t c = 0; c < most_chunks; ++c) {
        constants.powers[c] = balanced(power(2, std::uint64_t{chunk_bits} * c, prime), prime);
    }
    return constants;
}

// The first `count` limbs; the number keeps the rest.
void take_limbs(Number& number, double* limbs, std::uint32_t primes, std::uint32_t count) {
    for (std::uint32_t limb = 0; limb < count; ++limb) {
        limbs[limb] = static_cast<double>(number.take_limb(limb_width(primes, limb)));
    }
}

ConversionConstants make_constants(const std::array<Prime, most_primes>& table, std::uint32_t primes) {
    ConversionConstants constants{};
    MergeConstants& merge = constants.merge;
    merge.primes = primes;
    Number product(1);
    for (std::uint32_t i = 0; i < primes; ++i) {
        const std::uint64_t prime = table[i].value;
        constants.reduce[i] = reduce_constants(prime);
        merge.prime[i] = constants.reduce[i].prime;
        merge.inverse[i] = constants.reduce[i].inverse;
        product.multiply(prime);

        Number cofactor(1);
        for (std::uint32_t k = 0; k < primes; ++k) {
            if (k != i) cofactor.multiply(table[k].value);
        }
        constants.cofactor_inverse[i] = power(cofactor.modulo(prime), prime - 2, prime);
        take_limbs(cofactor, merge.cofactor[i], primes, primes - 1);
        merge.cofactor[i][primes - 1] = cofactor.rest();
    }
    take_limbs(product, merge.product, primes, primes);
    merge.product[primes] = product.rest() * 0x1p48;
    return constants;
}

// --- The ranges of NUMERICS_CONVERSION.md. Sums of doubles: off by 2^-49 at most, far inside the slack. ---

constexpr double slack = 1 - 0x1p-20;

void require(bool condition, const char* what) {
    if (!condition) assertion_failure(what, "vst::conversion_constants()", "The prime table does not fit.");
}

void check_reduce(const ReduceConstants& constants) {
    require(constants.prime > 0x1p49 && constants.prime < 0x1p50, "2^49 < prime < 2^50");
    double sum = 0;
    for (std::uint32_t c = 1; c < most_chunks; ++c) {
        require(std::abs(constants.powers[c]) <= constants.prime / 2, "powers are balanced");
        sum += 0x1p48 * std::abs(constants.powers[c]);
    }
    require(sum < 0x1p99 * slack, "fields times powers stay below 2^99");
}

void check_merge(const MergeConstants& constants) {
    const std::uint32_t primes = constants.primes;
    const double most_turns = (primes + 1) / 2;
    double product = 1;
    for (std::uint32_t i = 0; i < primes; ++i) product *= constants.prime[i];
    require(product > std::ldexp(1.0, static_cast<int>(48 * (primes - 1) + 42 + 8)),
            "the largest coefficient is far below P");
    for (std::uint32_t limb = 0; limb < primes; ++limb) {
        const double unit = std::ldexp(1.0, static_cast<int>(limb_width(primes, limb)));
        double upper = limb == primes - 1 ? most_turns * std::abs(constants.product[primes]) : 0;
        for (std::uint32_t i = 0; i < primes; ++i) {
            upper += (constants.prime[i] / 2 + 1) * std::abs(constants.cofactor[i][limb]);
        }
        require(upper < unit * 0x1p51 * slack, "sums of upper parts stay inside the magic number's range");
        const double lower = primes * 0.52 * unit + most_turns * std::abs(constants.product[limb]) + 0x1p40;
        require(lower < 0x1p51 * slack, "sums of lower parts stay inside the magic number's range");
    }
}

ConversionConstants checked_constants(std::uint32_t primes, std::uint32_t multiplier_index) {
    const ConversionConstants constants = make_constants(prime_table[multiplier_index], primes);
    for (std::uint32_t i = 0; i < primes; ++i) check_reduce(constants.reduce[i]);
    check_merge(constants.merge);
    return constants;
}

template <std::uint32_t Primes, std::uint32_t MultiplierIndex>
const ConversionConstants& cached_constants() {
    static const ConversionConstants constants = checked_constants(Primes, MultiplierIndex);
    return constants;
}

using Getter = const ConversionConstants& (*)();
template <std::uint32_t Primes>
constexpr std::array<Getter, multiplier_count> getters = {
    cached_constants<Primes, 0>, cached_constants<Primes, 1>, cached_constants<Primes, 2>,
    cached_constants<Primes, 3>};

}  // namespace

const ConversionConstants& conversion_constants(std::uint32_t primes, std::uint32_t multiplier) {
    static constexpr std::array<std::array<Getter, multiplier_count>, 4> all = {getters<6>, getters<7>,
                                                                                getters<8>, getters<9>};
    if (primes < fewest_primes || primes > most_primes || multiplier % 2 == 0 || multiplier > 7) {
        invalid_function_parameters("vst::conversion_constants()");
    }
    return all[primes - fewest_primes][multiplier / 2]();
}

}  // namespace qmp::vst
