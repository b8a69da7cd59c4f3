#include "multiply/twiddle_set.h"

#include <algorithm>

#include "errors/check.h"
#include "errors/exception.h"
#include "multiply/fft/size_tables.h"
#include "multiply/vst/plan.h"
#include "multiply/vst/vst_params.h"

namespace qmp {
namespace {

constexpr std::uint32_t multipliers[4] = {1, 3, 5, 7};

// The exponents that the floating-point tables of the four multipliers need for products of up to this many
// words; 0 for a multiplier that no such product uses.
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

// The column layers that the vector transform needs, -1 for a multiplier that it does not use.
std::array<int, 4> column_layers_for(std::uint64_t product_words, std::uint64_t fft_words) {
    std::array<int, 4> layers{-1, -1, -1, -1};
    if (product_words <= std::min(fft_words, TwiddleSet::fft_product_words)) return layers;
    const std::uint64_t most = vst::limit_tables.largest_capacity() / 64;
    const std::uint64_t capacity = vst::vst_params(64 * std::min(product_words, most)).capacity_bits;
    for (const auto& list : {vst::limit_tables.specialised, vst::limit_tables.standard}) {
        for (const LimitRow& row : list) {
            if (vst::limit_tables.size(row).capacity_bits > capacity) break;
            int& of_multiplier = layers[row.multiplier / 2];
            of_multiplier = std::max(of_multiplier, vst::column_layers_of(row.exponent));
        }
    }
    return layers;
}

struct Needs {
    std::array<std::uint32_t, 4> exponents;
    std::array<int, 4> layers;

    Needs(std::uint64_t product_words, std::uint64_t fft_words)
        : exponents(exponents_for(std::min(product_words, fft_words))),
          layers(column_layers_for(product_words, fft_words)) {}
    std::uint64_t table_doubles(std::size_t i) const {
        return exponents[i] == 0 ? 0 : fft::TwiddleTable::doubles(multipliers[i], exponents[i]);
    }
    std::uint64_t column_doubles(std::size_t i) const {
        return layers[i] < 0 ? 0 : vst::ColumnTables::doubles(multipliers[i], layers[i]);
    }
};

}  // namespace

std::uint64_t TwiddleSet::bytes_needed(std::uint64_t product_words, std::uint64_t fft_words) {
    const Needs needs(product_words, fft_words);
    std::uint64_t doubles = 0;
    for (std::size_t i = 0; i < 4; ++i) doubles += needs.table_doubles(i) + needs.column_doubles(i);
    return doubles * sizeof(double);
}

TwiddleSet::TwiddleSet(void* memory, std::uint64_t bytes, std::uint64_t product_words,
                       ParallelContext parallel, std::uint64_t fft_words)
    : largest_product_(product_words) {
    const std::uint64_t needed = bytes_needed(product_words, fft_words);
    if (bytes < needed) throw LimitExceededException("TwiddleSet::TwiddleSet()", bytes, needed);
    const Needs needs(product_words, fft_words);
    double* next = static_cast<double*>(memory);
    for (std::size_t i = 0; i < 4; ++i) {
        if (needs.exponents[i] == 0) continue;
        tables_[i] = fft::TwiddleTable(multipliers[i], needs.exponents[i], next, parallel);
        built_[i] = true;
        next += needs.table_doubles(i);
    }
    for (std::size_t i = 0; i < 4; ++i) {
        if (needs.layers[i] < 0) continue;
        columns_[i] = vst::ColumnTables(multipliers[i], needs.layers[i], next, parallel);
        next += needs.column_doubles(i);
    }
}

const fft::TwiddleTable* TwiddleSet::table(std::uint32_t multiplier) const {
    if (multiplier > 7 || multiplier % 2 == 0 || !built_[multiplier / 2]) return nullptr;
    return &tables_[multiplier / 2];
}

const vst::ColumnTables* TwiddleSet::columns(std::uint32_t multiplier) const {
    if (multiplier > 7 || multiplier % 2 == 0 || columns_[multiplier / 2].layers() < 0) return nullptr;
    return &columns_[multiplier / 2];
}

}  // namespace qmp
