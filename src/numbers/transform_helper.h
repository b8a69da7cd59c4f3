// Two products that share an operand, P1 = A X and P2 = B X, with one forward transform of X.
#pragma once

#include <cstdint>

#include "numbers/big_float.h"
#include "numbers/exact_float.h"

namespace qmp {

class TransformHelper {
  public:
    // p1 = a x to p1_precision words, p2 = b x to p2_precision words. The destinations overlap nothing.
    // The convolutions have min(La, p1_precision) + m + 6 and min(Lb, p2_precision) + m + 6 words, with
    // m = min(max(p1_precision, p2_precision), Lx).
    // Scratch: scratch_words() of it, BufferTooSmallException ("TransformHelper::TransformHelper()")
    // when the context holds less.
    TransformHelper(const MultiplyContext& context, BigFloat& p1, std::uint64_t p1_precision, BigFloat& p2,
                    std::uint64_t p2_precision, BigFloatView a, BigFloatView b, BigFloatView x);
    // The exact form: both products whole, with their check values, by convolutions of La + Lx and Lb + Lx
    // words.
    TransformHelper(const MultiplyContext& context, ExactFloat& p1, ExactFloat& p2, ExactFloatView a,
                    ExactFloatView b, ExactFloatView x);

    // Scratch in words that the exact or truncating form needs at most when the longer product's
    // convolution is n words.
    static std::uint64_t scratch_words(std::uint64_t n, std::uint64_t tasks);
};

}  // namespace qmp
