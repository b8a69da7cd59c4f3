#include "multiply/vst/column_tables.h"

#include "multiply/vst/roots.h"

namespace qmp::vst {
namespace {

std::uint64_t subtree_doubles(int layers) {
    const std::uint64_t nodes = std::uint64_t{1} << layers;
    return 2 * (nodes < 8 ? 8 : nodes);
}

void build_subtree(double* values, double* quotients, int layers, const SubtreeAngle& angle,
                   const Prime& prime, const PrimeConstants& constants, bool inverse) {
    const std::uint64_t p = prime.value;
    const std::uint64_t* roots = inverse ? constants.inverse_root : constants.root;
    values[0] = quotients[0] = 0;
    for (int l = 0; l < layers; ++l) {
        // Node 0's factor, then one bit of the node's number after the other.
        std::uint64_t first = root_of_unity(prime, angle.numerator, angle.denominator << (l + 1));
        if (inverse) first = inverse_modulo(first, p);
        double* layer = values + (std::uint64_t{1} << l);
        layer[0] = static_cast<double>(first);
        for (int i = 0; i < l; ++i) {
            const std::uint64_t size = std::uint64_t{1} << i;
            for (std::uint64_t b = 0; b < size; ++b) {
                layer[size + b] = static_cast<double>(
                    multiply_modulo(static_cast<std::uint64_t>(layer[b]), roots[i + 2], p));
            }
        }
    }
    for (std::uint64_t i = 1; i < std::uint64_t{1} << layers; ++i) {
        values[i] = balanced(static_cast<std::uint64_t>(values[i]), p);
        quotients[i] = values[i] / static_cast<double>(p);
    }
}

}  // namespace

std::uint64_t ColumnTables::doubles(std::uint32_t multiplier, int layers) {
    return most_primes * 2 * multiplier * 2 * subtree_doubles(layers);
}

ColumnTables::ColumnTables(std::uint32_t multiplier, int layers, double* memory, ParallelContext parallel)
    : multiplier_(multiplier), layers_(layers), memory_(memory) {
    parallel.run(0, most_primes, [&](std::uint64_t i) {
        const auto prime = static_cast<std::uint32_t>(i);
        for (int form = 0; form < 4; ++form) {
            const bool negacyclic = form & 1, inverse = form & 2;
            for (std::uint32_t subtree = 0; subtree < multiplier; ++subtree) {
                double* values = at(prime, negacyclic, subtree, inverse);
                build_subtree(values, values + subtree_doubles(layers) / 2, layers,
                              SubtreeAngle(multiplier, subtree, negacyclic),
                              prime_table[index_of(multiplier)][prime], prime_constants(multiplier, prime),
                              inverse);
            }
        }
    });
}

double* ColumnTables::at(std::uint32_t prime, bool negacyclic, std::uint32_t subtree, bool inverse) const {
    const std::uint64_t index =
        ((std::uint64_t{prime} * 2 + negacyclic) * multiplier_ + subtree) * 2 + inverse;
    return memory_ + index * subtree_doubles(layers_);
}

NodeFactors ColumnTables::factors(std::uint32_t prime, bool negacyclic, std::uint32_t subtree,
                                  bool inverse) const {
    const double* values = at(prime, negacyclic, subtree, inverse);
    return {values, values + subtree_doubles(layers_) / 2};
}

}  // namespace qmp::vst
