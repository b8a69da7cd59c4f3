#include "stress/algorithm_stress_test.h"

#include <algorithm>
#include <cmath>

#include "multiply/fft/fft_params.h"
#include "multiply/hybrid_ntt/hybrid_params.h"
#include "multiply/vst/vst_params.h"

namespace kelvara {
namespace {

// Layers of a transform of multiplier * 2^exponent numbers; an odd multiplier counts for its logarithm.
double layers_of(std::uint32_t multiplier, std::uint32_t exponent) {
    return exponent + std::log2(static_cast<double>(multiplier));
}

// Two transforms of half as many complex numbers as there are points. A pass of two layers over four numbers
// takes 16 additions and three complex products of four operations, one of three layers over eight numbers
// about 84: 3.5 a number and layer. The pointwise product takes some 12 a number.
double fft_operations(std::uint64_t n) {
    const qmp::fft::FftParams& params = qmp::fft::fft_params(64 * 2 * n);
    const double numbers = static_cast<double>(params.points) / 2;
    return numbers * (2 * 3.5 * layers_of(params.r, params.k - 1) + 12);
}

// Two transforms for every prime. A butterfly takes two numbers through a layer in a modular product (six
// operations: three products, a rounding, a fused subtraction, an addition) and two additions. The squares
// take six a point, reductions on the way and both conversions some 12 more.
double vst_operations(std::uint64_t n) {
    const qmp::SizeParams size = qmp::vst::vst_params(64 * 2 * n);
    const double residues = static_cast<double>(size.points()) * size.primes;
    return residues * (2 * 4 * layers_of(size.multiplier, size.exponent) + 18);
}

// Of two residues of a hybrid transform, for products of up to so many words: a longer transform may have the
// shorter residues.
std::uint64_t longest_residue_product(std::uint64_t units) {
    std::uint64_t longest = 0;
    for (const auto& list : {qmp::hybrid_ntt::specialised_list(), qmp::hybrid_ntt::standard_list()}) {
        for (const qmp::hybrid_ntt::HybridRow& row : list) {
            const qmp::hybrid_ntt::HybridParams size = qmp::hybrid_ntt::make_params(row.k, row.m);
            longest = std::max(longest, size.n);
            if (size.capacity_bits >= 64 * units) break;
        }
    }
    return longest;
}

}  // namespace

// The vector transform's lists end before the length that it names as its largest.
std::uint64_t AlgorithmStressTest::max_bits() const {
    const std::uint64_t bits = algorithm_.max_bits;
    return is("VST") ? std::min(bits, qmp::vst::limit_tables.largest_capacity()) : bits;
}

TwiddleReach AlgorithmStressTest::twiddle_reach(std::uint64_t units) const {
    switch (need_) {
        case TwiddleNeed::none:
            return {};
        case TwiddleNeed::covering:
            return {units, 0};
        case TwiddleNeed::residues:
            return {units, longest_residue_product(units)};
        case TwiddleNeed::floating_point:
            return {units, units};
    }
    return {};
}

ProductWork AlgorithmStressTest::work(std::uint64_t n) const {
    constexpr double word = sizeof(qmp::Word);
    const double length = static_cast<double>(n);
    ProductWork work;
    // The operand is read, the product is written, and read again for its hash.
    work.bytes = word * (length + 2 * length + 2 * length);
    // A transformed operand is written and read on the way forward, and again on the way back.
    if (need_ != TwiddleNeed::none) {
        qmp::TransformParametersBox box;
        work.bytes += 4 * word * static_cast<double>(algorithm_.construct(box, 2 * n).operand_words);
    }
    if (is("FFT")) work.operations = fft_operations(n);
    if (is("VST")) work.operations = vst_operations(n);
    return work;
}

}  // namespace kelvara
