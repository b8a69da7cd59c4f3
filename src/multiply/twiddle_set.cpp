#include "multiply/twiddle_set.h"

#include <algorithm>

#include "errors/check.h"
#include "errors/exception.h"
#include "multiply/fft/size_tables.h"

namespace qmp {
namespace {

constexpr std::uint32_t multipliers[4] = {1, 3, 5, 7};

// The exponents that the tables of the four multipliers need for products of up to this many words;
// 0 for a multiplier that no such product uses.
std::array<std::uint32_t, 4> exponents_for(std::uint64_t product_words) {
    std::array<std::uint32_t, 4> exponents{};
    if (product_words == 0) return exponents;
    for (const fft::FftParams& params : fft::size_table) {
        std::uint32_t& exponent = exponents[params.r / 2];
        exponent = std::max(exponent, params.k);
        if (params.capacity_bits / 64 >= product_words) break;
    }
    return exponents;
}

}  // namespace

std::uint64_t TwiddleSet::bytes_needed(std::uint64_t product_words) {
    const std::array<std::uint32_t, 4> exponents = exponents_for(product_words);
    std::uint64_t doubles = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        if (exponents[i] != 0) doubles += fft::TwiddleTable::doubles(multipliers[i], exponents[i]);
    }
    return doubles * sizeof(double);
}

TwiddleSet::TwiddleSet(void* memory, std::uint64_t bytes, std::uint64_t product_words,
                       ParallelContext parallel)
    : largest_product_(std::min(product_words, fft::size_table.back().capacity_bits / 64)) {
    const std::uint64_t needed = bytes_needed(product_words);
    if (bytes < needed) throw LimitExceededException("TwiddleSet::TwiddleSet()", bytes, needed);
    const std::array<std::uint32_t, 4> exponents = exponents_for(product_words);
    double* next = static_cast<double*>(memory);
    for (std::size_t i = 0; i < 4; ++i) {
        if (exponents[i] == 0) continue;
        tables_[i] = fft::TwiddleTable(multipliers[i], exponents[i], next, parallel);
        built_[i] = true;
        next += fft::TwiddleTable::doubles(multipliers[i], exponents[i]);
    }
}

const fft::TwiddleTable* TwiddleSet::table(std::uint32_t multiplier) const {
    if (multiplier > 7 || multiplier % 2 == 0 || !built_[multiplier / 2]) return nullptr;
    return &tables_[multiplier / 2];
}

}  // namespace qmp
