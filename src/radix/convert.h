// Conversion of a binary fraction to base-B words by halving the digits.
//
// At a node of m digit words the level's power B^s splits the fraction f: the fractional part of f B^s is
// the low half, and f itself, cut to fewer words, the high half. Both are fractions again. The digits are
// those of the fraction as it is given, truncated: they do not depend on the task count, and a fraction
// that ends within m words is converted exactly.
#pragma once

#include <cstdint>

#include "console/progress.h"
#include "multiply/multiply_context.h"
#include "radix/convert_plan.h"
#include "radix/halves.h"

namespace qmp {

// Writes m digit words of 0.f downward from `destination_top` (one past the most significant) and returns
// the guard word, the next one. m is at most the plan's. A status other than 0 (overlap_mismatch) means
// that two halves did not fit: a rounding or hardware error; the digits are worthless then.
//
// The fraction is little-endian with the point above its top word; words beyond what the plan needs are not
// looked at. The context's scratch holds plan.scratch_words(). Progress may be null; it is used on the
// calling thread only. So may the hooks.
//
// convert_L converts one half after the other. qmq_CBRv2_ci_btrf_T converts them in parallel from the
// plan's parallel level upward, where the context has more than one task.
ConvertResult convert_L(const ConvertPlanP& plan, const MultiplyContext& context, Word* destination_top,
                        std::uint64_t m, const Word* fraction, std::uint64_t fraction_words,
                        Progress* progress, ConvertHooks* hooks = nullptr);
ConvertResult qmq_CBRv2_ci_btrf_T(const ConvertPlanP& plan, const MultiplyContext& context,
                                  Word* destination_top, std::uint64_t m, const Word* fraction,
                                  std::uint64_t fraction_words, Progress* progress,
                                  ConvertHooks* hooks = nullptr);

}  // namespace qmp
