#include "radix/convert_plan.h"

#include <algorithm>
#include <utility>

#include "console/console.h"
#include "multiply/basecase/schoolbook.h"
#include "multiply/multiply.h"

namespace qmp {
namespace {

// Convolutions up to so many words are whole schoolbook products instead. Measured: 22 x 7 words take 44 ns
// and 41 x 15 words 180 ns, half of what the ways through the algorithm table and a cyclic product take; from
// 75 x 28 words on the transforms win.
constexpr std::uint64_t longest_schoolbook_convolution = 58;
// Digit words from which a half is worth a thread of its own.
constexpr std::uint64_t parallel_half_words = 512;
constexpr const char* populate_name = "ConvertPlanP::populate_fft_plans()";

constexpr std::uint64_t align8(std::uint64_t words) {
    return (words + 7) & ~std::uint64_t{7};
}

}  // namespace

ConvertPlanP::ConvertPlanP(Word base, std::uint64_t m, std::uint64_t tasks)
    : base_(base), m_(m), tasks_(tasks ? tasks : 1), leaf_(m) {
    if (base < 2) {
        status_ = invalid_base;
        return;
    }
    base_bits_ = base_bits(base);
    for (; leaf_ >= convert_basecase_words; leaf_ = (leaf_ + 1) / 2) ++levels_;
    parallel_level_ = levels_;
    for (int j = levels_ - 1; j >= 0; --j) {
        Level& level = table_[static_cast<std::size_t>(j)];
        level.output_words = leaf_ << j;
        if (level.output_words >= parallel_half_words) parallel_level_ = j;
        level.power_zeros = power_zero_words(base, level.output_words);
        // The fraction of the level's largest node, without the words that only reach the integer part. The
        // product is longer, but what wraps around falls on words that no half needs.
        const std::uint64_t words =
            fraction_words(j, std::min(2 * level.output_words, m_)) - level.power_zeros;
        construct_transform(level.parameters, words);
        level.schoolbook = words <= longest_schoolbook_convolution;
    }
}

std::uint64_t ConvertPlanP::fraction_words(int j, std::uint64_t m) const {
    return words_of_digits(base_bits_, m) + 2 * static_cast<std::uint64_t>(j + 2);
}

std::uint64_t ConvertPlanP::low_fraction_words(int j) const {
    return align8(fraction_words(j - 1, level(j).output_words) + 2);
}

std::uint64_t ConvertPlanP::exact_product_words(int j) const {
    return 2 * align8(level(j).convolution_words());
}

std::uint64_t ConvertPlanP::level_table_words(int j) const {
    const Level& level = this->level(j);
    return align8(level.schoolbook ? power_words(base_, level.output_words)
                                   : level.parameters->operand_words);
}

std::uint64_t ConvertPlanP::whole_product_words(int j) const {
    return align8(level(j).convolution_words() + power_words(base_, level(j).output_words));
}

std::uint64_t ConvertPlanP::node_scratch_words(int j, std::uint64_t tasks) const {
    if (j < 0) return 0;
    const TransformParameters& parameters = *level(j).parameters;
    const std::uint64_t product =
        level(j).schoolbook
            ? whole_product_words(j)
            : align8(parameters.operand_words) + exact_product_words(j) + align8(parameters.scratch_words);
    const std::uint64_t halves =
        tasks > 1 && j >= parallel_level_
            ? node_scratch_words(j - 1, tasks / 2) + node_scratch_words(j - 1, tasks - tasks / 2)
            : node_scratch_words(j - 1, 1);
    return low_fraction_words(j) + std::max(product, halves);
}

std::uint64_t ConvertPlanP::table_words() const {
    std::uint64_t words = 0;
    for (int j = 0; j < levels_; ++j) words += level_table_words(j);
    return words;
}

std::uint64_t ConvertPlanP::scratch_words() const {
    return std::max(population_scratch_words(), node_scratch_words(levels_ - 1, tasks_));
}

std::uint64_t ConvertPlanP::power_buffer_capacity() const {
    std::uint64_t words = power_buffer_words(base_, leaf_);
    for (int j = 0; j + 1 < levels_; ++j) {
        words = std::max(words, power_buffer_words(base_, level(j + 1).output_words));
    }
    return align8(words);
}

std::uint64_t ConvertPlanP::population_scratch_words() const {
    if (levels_ == 0) return 0;
    std::uint64_t words = 0;
    for (int j = 0; j < levels_; ++j) {
        if (level(j).schoolbook) continue;
        const TransformParameters& parameters = *level(j).parameters;
        const std::uint64_t space = j + 1 < levels_ ? align8(parameters.operand_words) : 0;
        words = std::max(words, space + align8(parameters.scratch_words));
    }
    return 2 * power_buffer_capacity() + words;
}

void ConvertPlanP::take_power(int j, const RadixPower& power, Word* table) {
    if (taken_.exchange(j + 1) != j) {
        console::fatal_error("ConvertPlanP::populate_fft_plans(): Thread Inconsistancy");
    }
    Level& level = table_[static_cast<std::size_t>(j)];
    level.power_length = power.length;
    level.table = table;
}

void ConvertPlanP::fill_table(const MultiplyContext& context, int j, const RadixPower& power) {
    const Level& level = this->level(j);
    if (level.schoolbook) {
        std::copy_n(power.words, power.length, level.table);
    } else {
        level.parameters->forward(context, level.table, power.words, power.length);
    }
}

RadixPower ConvertPlanP::fill_table_and_square(const MultiplyContext& context, int j, const RadixPower& power,
                                               Word* destination) {
    const Level& level = this->level(j);
    if (level.schoolbook) {
        fill_table(context, j, power);
        mulB(destination, power.words, power.length, power.words, power.length);
    } else {
        // The square is shorter than the level's convolution, so that one transform serves for both.
        const TransformParameters& parameters = *level.parameters;
        const MultiplyContext rest = context.after(parameters.operand_words, populate_name);
        const OperandState state = parameters.begin_forward(rest, level.table, power.words, power.length);
        parameters.finish_square(rest, context.scratch, level.table, state, destination, 0, 2 * power.length);
    }
    return stripped(destination, 2 * power.length, 2 * power.zeros);
}

void ConvertPlanP::populate_fft_plans(const MultiplyContext& context, Word* tables) {
    if (levels_ == 0) return;
    const std::uint64_t capacity = power_buffer_capacity();
    Word* buffer = context.scratch;
    Word* other = buffer + capacity;
    const MultiplyContext rest = context.after(2 * capacity, populate_name);
    RadixPower power = form_power_basecase(base_, leaf_, buffer, other);
    for (int j = 0; j < levels_; ++j) {
        // Short transforms are not worth a second thread.
        const MultiplyContext level_context = j >= parallel_level_ ? rest : rest.with_tasks(1);
        take_power(j, power, tables);
        tables += level_table_words(j);
        if (j + 1 == levels_) {
            fill_table(level_context, j, power);
        } else {
            // The buffer that does not hold the power.
            Word* destination = power.words >= other && power.words < other + capacity ? buffer : other;
            power = fill_table_and_square(level_context, j, power, destination);
        }
    }
}

}  // namespace qmp
