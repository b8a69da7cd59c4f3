#include "radix/convert_plan.h"

#include <algorithm>
#include <utility>

#include "console/console.h"
#include "multiply/multiply.h"

namespace qmp {
namespace {

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
        construct_transform(level.parameters,
                            fraction_words(j, std::min(2 * level.output_words, m_)) - level.power_zeros);
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

std::uint64_t ConvertPlanP::node_scratch_words(int j, std::uint64_t tasks) const {
    if (j < 0) return 0;
    const TransformParameters& parameters = *level(j).parameters;
    const std::uint64_t product =
        align8(parameters.operand_words) + exact_product_words(j) + align8(parameters.scratch_words);
    const std::uint64_t halves =
        tasks > 1 && j >= parallel_level_
            ? node_scratch_words(j - 1, tasks / 2) + node_scratch_words(j - 1, tasks - tasks / 2)
            : node_scratch_words(j - 1, 1);
    return low_fraction_words(j) + std::max(product, halves);
}

std::uint64_t ConvertPlanP::table_words() const {
    std::uint64_t words = 0;
    for (int j = 0; j < levels_; ++j) words += align8(level(j).parameters->operand_words);
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

// Of the square of a level's power.
std::uint64_t ConvertPlanP::square_scratch_words(int j, std::uint64_t tasks) const {
    return align8(scratch_words_for(2 * power_words(base_, level(j).output_words), tasks));
}

std::uint64_t ConvertPlanP::population_scratch_words() const {
    if (levels_ == 0) return 0;
    std::uint64_t transform = 0;
    std::uint64_t square = 0;
    for (int j = 0; j < levels_; ++j) {
        transform = std::max(transform, align8(level(j).parameters->scratch_words));
        if (j + 1 < levels_) {
            square = std::max(square, square_scratch_words(j, tasks_));
        }
    }
    return 2 * power_buffer_capacity() + transform + square;
}

void ConvertPlanP::transform_power(const MultiplyContext& context, int j, const RadixPower& power,
                                   Word* transformed) {
    if (transformed_ != j) console::fatal_error("ConvertPlanP::populate_fft_plans(): Thread Inconsistancy");
    Level& level = table_[static_cast<std::size_t>(j)];
    level.power_length = power.length;
    level.parameters->forward(context, transformed, power.words, power.length);
    level.transformed = transformed;
    transformed_ = j + 1;
}

RadixPower ConvertPlanP::next_power(const MultiplyContext& context, int j, const RadixPower& power,
                                    Word* destination) {
    if (formed_ != j + 1) console::fatal_error("ConvertPlanP::populate_fft_plans(): Thread Inconsistancy");
    const RadixPower next = square(context, destination, power);
    formed_ = j + 2;
    return next;
}

void ConvertPlanP::populate_fft_plans(const MultiplyContext& context, Word* tables) {
    if (levels_ == 0) return;
    const std::uint64_t capacity = power_buffer_capacity();
    Word* buffer = context.scratch;
    Word* other = buffer + capacity;
    const MultiplyContext rest = context.after(2 * capacity, populate_name);
    RadixPower power = form_power_basecase(base_, leaf_, buffer, other);
    if (formed_.exchange(1) != 0) {
        console::fatal_error("ConvertPlanP::populate_fft_plans(): Thread Inconsistancy");
    }
    for (int j = 0; j < levels_; ++j) {
        // The buffer that does not hold the power.
        Word* destination = power.words >= other && power.words < other + capacity ? buffer : other;
        const bool last = j + 1 == levels_;
        RadixPower next{};
        // The transform of this power and the square that is the next one do not wait for each other.
        if (context.tds > 1 && !last && j >= parallel_level_) {
            // With several tasks both take what scratch they are given, so each has a part of its own.
            const std::uint64_t half = context.tds / 2;
            const std::uint64_t square_words = square_scratch_words(j, context.tds - half);
            MultiplyContext square_part = rest.with_tasks(context.tds - half);
            square_part.scratch_words = square_words;
            const MultiplyContext transform_part = rest.after(square_words, populate_name).with_tasks(half);
            context.run_pair([&] { transform_power(transform_part, j, power, tables); },
                             [&] { next = next_power(square_part, j, power, destination); });
        } else {
            transform_power(rest, j, power, tables);
            if (!last) next = next_power(rest, j, power, destination);
        }
        tables += align8(level(j).parameters->operand_words);
        power = next;
    }
}

}  // namespace qmp
