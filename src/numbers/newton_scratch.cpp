// Scratch of the Newton iterations.
#include <algorithm>

#include "multiply/multiply.h"
#include "numbers/newton.h"
#include "numbers/newton_step.h"

namespace qmp {
namespace {

// A transform form keeps its estimate while the step below it, and then its own correction, use the rest.
std::uint64_t iteration_scratch_words(std::uint64_t p, std::uint64_t estimate_capacity_beyond_p) {
    if (p < newton_transform_precision) return newton::elementary_scratch_words(p);
    const std::uint64_t estimate_p = newton::estimate_precision(p);
    return estimate_p + estimate_capacity_beyond_p +
           std::max(iteration_scratch_words(estimate_p, estimate_capacity_beyond_p),
                    newton::correction_words(p));
}

// Two transformed operands, and what an operation on them takes.
std::uint64_t transforms_scratch_words(std::uint64_t convolution_words) {
    TransformParametersBox box;
    const TransformParameters& parameters = construct_transform(box, convolution_words);
    return 2 * parameters.operand_words + parameters.scratch_words;
}

}  // namespace

std::uint64_t reciprocal_scratch_words(std::uint64_t p) {
    return iteration_scratch_words(p, 3);
}

std::uint64_t inverse_square_root_scratch_words(std::uint64_t p) {
    return iteration_scratch_words(p, 4);
}

std::uint64_t division_scratch_words(std::uint64_t p) {
    if (p < newton_transform_precision) return 2 * p + 9;
    return p + 10 + (p + 1) / 2 * 2;
}

std::uint64_t newton_largest_product(std::uint64_t p) {
    // The elementary forms multiply operands of up to p + 2 words whole, the transform forms by
    // convolutions of p + 9 words.
    return p < newton_transform_precision ? std::uint64_t{24} : p + 9;
}

std::uint64_t newton_multiply_scratch_bytes(std::uint64_t p, std::uint64_t tasks) {
    const std::uint64_t largest = newton_largest_product(p);
    std::uint64_t words = std::max(scratch_words_for(largest, tasks), scratch_words_for(24, tasks));
    if (p >= newton_transform_precision) words = std::max(words, transforms_scratch_words(largest));
    for (; p >= newton_transform_precision; p = newton::estimate_precision(p)) {
        words = std::max(words, transforms_scratch_words(p + 8));
    }
    return words * sizeof(Word);
}

}  // namespace qmp
