#include "multiply/vst/roots.h"

#include <array>

#include "errors/exception.h"

namespace qmp::vst {
namespace {

constexpr std::size_t leaf_points = std::size_t{1} << longest_leaf;

void require(bool condition, const char* message) {
    if (!condition) throw InvalidParametersException("qmp::vst::prime_constants()", message);
}

double half_of(std::uint64_t x, std::uint64_t p) {
    return balanced(x % 2 == 0 ? x / 2 : (x + p) / 2, p);
}

PrimeConstants constants_of(std::uint32_t multiplier, const Prime& prime) {
    const std::uint64_t p = prime.value;
    require(p > (std::uint64_t{1} << 49) && p < (std::uint64_t{1} << 50), "A prime is out of range.");
    PrimeConstants c{};
    c.modulus = {static_cast<double>(p), 1.0 / static_cast<double>(p)};

    const std::uint32_t exponent = prime_exponents[index_of(multiplier)];
    for (std::uint32_t k = 0; k <= exponent; ++k) {
        c.root[k] = root_of_unity(prime, 1, std::uint64_t{1} << k);
        c.inverse_root[k] = inverse_modulo(c.root[k], p);
        c.outer_root[k] = root_of_unity(prime, 1, std::uint64_t{multiplier} << k);
        c.inverse_outer_root[k] = inverse_modulo(c.outer_root[k], p);
        if (k > 0) require(multiply_modulo(c.root[k], c.root[k], p) == c.root[k - 1], "Wrong root of unity.");
    }
    require(c.root[0] == 1 && c.root[1] == p - 1, "A root of unity has too small an order.");

    if (multiplier > 1) {
        const std::uint64_t z = root_of_unity(prime, 1, multiplier);
        require(z != 1 && power_modulo(z, multiplier, p) == 1, "Wrong root of unity.");
        for (std::uint32_t k = 1; k <= (multiplier - 1) / 2; ++k) {
            const std::uint64_t a = power_modulo(z, k, p);
            const std::uint64_t b = power_modulo(z, multiplier - k, p);
            c.outer.sums[k - 1] = half_of((a + b) % p, p);
            c.outer.differences[k - 1] = half_of((a + p - b) % p, p);
            c.outer.sum_quotients[k - 1] = c.outer.sums[k - 1] / c.modulus.prime;
            c.outer.difference_quotients[k - 1] = c.outer.differences[k - 1] / c.modulus.prime;
        }
    }
    return c;
}

// T[b] = e(f(b) / 2) or its inverse for b < leaf_points / 2: bit i of b contributes e(2^-(i + 2)).
std::array<std::uint64_t, leaf_points / 2> mirrored_roots(const std::uint64_t* roots, std::uint64_t p) {
    std::array<std::uint64_t, leaf_points / 2> t{};
    t[0] = 1;
    for (std::size_t i = 0, size = 1; size < t.size(); ++i, size *= 2) {
        for (std::size_t b = 0; b < size; ++b) t[size + b] = multiply_modulo(t[b], roots[i + 2], p);
    }
    return t;
}

struct LeafFactors {
    alignas(64) double nodes[leaf_points / 2];
    alignas(64) double lanes[2 * leaf_points];
};

// The twists: record g has for k = 1 .. lanes - 1 the values e(f(b) k / lanes) of the chunks b = lanes g + i,
// then their quotients.
void build_twists(double* next, const std::uint64_t* roots, const Prime& prime, int log_lanes) {
    const std::uint64_t p = prime.value;
    const std::size_t lanes = std::size_t{1} << log_lanes;
    for (std::size_t first = 0; first < leaf_points / lanes; first += lanes) {
        for (std::size_t i = 0; i < lanes; ++i) {
            // Bit j of b contributes e(2^-(j + 1) / lanes).
            std::uint64_t root = 1;
            for (int j = 0; (first + i) >> j != 0; ++j) {
                if ((first + i) >> j & 1) root = multiply_modulo(root, roots[j + 1 + log_lanes], p);
            }
            std::uint64_t power = 1;
            for (std::size_t k = 1; k < lanes; ++k) {
                power = multiply_modulo(power, root, p);
                double* record = next + (k - 1) * 2 * lanes;
                record[i] = balanced(power, p);
                record[lanes + i] = record[i] / static_cast<double>(p);
            }
        }
        next += (lanes - 1) * 2 * lanes;
    }
}

void build(LeafFactors& factors, const std::uint64_t* roots, const Prime& prime, int log_lanes) {
    const auto t = mirrored_roots(roots, prime.value);
    factors.nodes[0] = 0;
    for (std::size_t size = 1; size < leaf_points / 2; size *= 2) {
        for (std::size_t b = 0; b < size; ++b) factors.nodes[size + b] = balanced(t[b], prime.value);
    }
    build_twists(factors.lanes, roots, prime, log_lanes);
}

template <std::uint32_t Multiplier>
const std::array<PrimeConstants, most_primes>& constants_of_multiplier() {
    static const auto all = [] {
        std::array<PrimeConstants, most_primes> constants{};
        const auto& primes = prime_table[index_of(Multiplier)];
        for (std::uint32_t i = 0; i < most_primes; ++i) {
            require(i == 0 || primes[i].value < primes[i - 1].value, "The primes are not in order.");
            constants[i] = constants_of(Multiplier, primes[i]);
        }
        return constants;
    }();
    return all;
}

// [prime][inverse]
using LeafSet = std::array<std::array<LeafFactors, 2>, most_primes>;

template <std::uint32_t Multiplier, int LogLanes>
const LeafSet& leaf_set() {
    static LeafSet set;
    static const bool built = [] {
        for (std::uint32_t i = 0; i < most_primes; ++i) {
            const PrimeConstants& c = prime_constants(Multiplier, i);
            const Prime& prime = prime_table[index_of(Multiplier)][i];
            build(set[i][0], c.root, prime, LogLanes);
            build(set[i][1], c.inverse_root, prime, LogLanes);
        }
        return true;
    }();
    static_cast<void>(built);
    return set;
}

template <std::uint32_t Multiplier>
const LeafSet& leaf_set_of(int log_lanes) {
    switch (log_lanes) {
        case 1:
            return leaf_set<Multiplier, 1>();
        case 2:
            return leaf_set<Multiplier, 2>();
        default:
            return leaf_set<Multiplier, 3>();
    }
}

}  // namespace

std::uint64_t multiply_modulo(std::uint64_t a, std::uint64_t b, std::uint64_t p) {
    __extension__ using Wide = unsigned __int128;
    // The quotient by floating point is right but for a few units.
    const auto quotient =
        static_cast<std::uint64_t>(static_cast<double>(a) * static_cast<double>(b) / static_cast<double>(p));
    auto rest = static_cast<std::int64_t>(static_cast<std::uint64_t>(Wide{a} * b - Wide{quotient} * p));
    while (rest < 0) rest += static_cast<std::int64_t>(p);
    while (rest >= static_cast<std::int64_t>(p)) rest -= static_cast<std::int64_t>(p);
    return static_cast<std::uint64_t>(rest);
}

std::uint64_t power_modulo(std::uint64_t base, std::uint64_t exponent, std::uint64_t p) {
    std::uint64_t result = 1;
    for (; exponent != 0; exponent >>= 1) {
        if (exponent & 1) result = multiply_modulo(result, base, p);
        base = multiply_modulo(base, base, p);
    }
    return result;
}

std::uint64_t inverse_modulo(std::uint64_t a, std::uint64_t p) {
    return power_modulo(a, p - 2, p);
}

double balanced(std::uint64_t x, std::uint64_t p) {
    return x <= p / 2 ? static_cast<double>(x) : -static_cast<double>(p - x);
}

std::uint64_t root_of_unity(const Prime& prime, std::uint64_t numerator, std::uint64_t denominator) {
    const std::uint64_t order = prime.value - 1;
    if (order % denominator != 0) {
        throw InvalidParametersException("qmp::vst::root_of_unity()", "No root of this order.");
    }
    return power_modulo(prime.primitive_root, order / denominator * (numerator % denominator), prime.value);
}

const PrimeConstants& prime_constants(std::uint32_t multiplier, std::uint32_t prime) {
    switch (multiplier) {
        case 1:
            return constants_of_multiplier<1>()[prime];
        case 3:
            return constants_of_multiplier<3>()[prime];
        case 5:
            return constants_of_multiplier<5>()[prime];
        default:
            return constants_of_multiplier<7>()[prime];
    }
}

LeafBase leaf_base(std::uint32_t multiplier, std::uint32_t prime, int log_lanes, bool inverse) {
    const LeafSet& set = multiplier == 1   ? leaf_set_of<1>(log_lanes)
                         : multiplier == 3 ? leaf_set_of<3>(log_lanes)
                         : multiplier == 5 ? leaf_set_of<5>(log_lanes)
                                           : leaf_set_of<7>(log_lanes);
    const LeafFactors& factors = set[prime][inverse ? 1 : 0];
    return {factors.nodes, factors.lanes};
}

}  // namespace qmp::vst
