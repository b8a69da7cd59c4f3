#include "multiply/ntt32/root_tables.h"

#include "multiply/ntt32/modular.h"

namespace qmp::ntt32 {
namespace {

// f(x) for every x, given f(2^i) = root^(2^(first_exponent - i)); bits i > first_exponent have no value and
// are never asked for.
void fill(IndexTable& table, std::uint32_t root, int first_exponent, const Modulus& modulus) {
    const std::uint32_t p = modulus.prime;
    const std::uint32_t one = make_factor(1, modulus).value;
    for (int part = 0; part < 2; ++part) {
        std::uint32_t* values = part == 0 ? table.low : table.high;
        for (std::uint32_t i = 0; i < table_size; ++i) values[i] = one;
        for (int bit = 0; bit < table_bits; ++bit) {
            const int exponent = first_exponent - table_bits * part - bit;
            if (exponent < 0) break;
            const std::uint32_t power = power_modulo(root, std::uint64_t{1} << exponent, p);
            for (std::uint32_t i = 0; i < 1u << bit; ++i) {
                values[(1u << bit) + i] = multiply_modulo(values[i], power, p);
            }
        }
    }
    for (std::uint32_t i = 0; i < table_padding; ++i) table.low[table_size + i] = one;
    for (std::uint32_t i = 0; i < table_size + table_padding; ++i) {
        table.low_companion[i] = table.low[i] * modulus.inverse;
    }
}

void fill(Roots& roots, const Modulus& modulus, std::uint32_t root, int exponent, int log_lanes) {
    roots.modulus = modulus;
    fill(roots.split, root, exponent - 2, modulus);              // bit 0 of a node: a quarter of the circle
    fill(roots.twist, root, exponent - 1 - log_lanes, modulus);  // r: half of it, D: its L-th part
}

struct BuiltTables : RootTables {
    BuiltTables(std::size_t set, int log_lanes) {
        const int exponent = static_cast<int>(set_exponents[set]);
        for (std::size_t i = 0; i < primes_per_set; ++i) {
            const Prime& prime = prime_table[set][i];
            moduli[i] = make_modulus(prime.value);
            const std::uint32_t root =
                power_modulo(prime.primitive_root, (prime.value - 1) >> exponent, prime.value);
            fill(forward[i], moduli[i], root, exponent, log_lanes);
            fill(inverse[i], moduli[i], inverse_modulo(root, prime.value), exponent, log_lanes);
        }
    }
};

template <std::size_t Set, int LogLanes>
const RootTables& built() {
    static const BuiltTables tables(Set, LogLanes);
    return tables;
}

template <std::size_t Set>
const RootTables& built_for(int log_lanes) {
    return log_lanes == 0 ? built<Set, 0>() : log_lanes == 3 ? built<Set, 3>() : built<Set, 4>();
}

}  // namespace

const RootTables& root_tables(std::size_t set, int log_lanes) {
    static_assert(set_count == 4);
    switch (set) {
        case 0:
            return built_for<0>(log_lanes);
        case 1:
            return built_for<1>(log_lanes);
        case 2:
            return built_for<2>(log_lanes);
        default:
            return built_for<3>(log_lanes);
    }
}

}  // namespace qmp::ntt32
