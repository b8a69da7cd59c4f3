// Exact sums and differences.
#include <algorithm>
#include <utility>

#include "errors/check.h"
#include "errors/exception.h"
#include "errors/fatal.h"
#include "multiply/basecase/word_kernels.h"
#include "numbers/check_value.h"
#include "numbers/exact_float.h"
#include "numbers/parallel_copy.h"

namespace qmp {
namespace {

// Words of a sum from the bottom up: `low` words of one operand alone, `overlap` words of both, the rest
// of the higher operand. Returns the sum's length; destination needs room for one word more.
std::uint64_t sum_layers(ParallelContext parallel, Word* destination, const Word* below, std::uint64_t low,
                         const Word* a, const Word* b, std::uint64_t overlap, const Word* rest,
                         std::uint64_t rest_words) {
    parallel_copy(parallel, destination, below, low);
    const bool carry = add_words(destination + low, a, b, overlap);
    Word* top = destination + low + overlap;
    parallel_copy(parallel, top, rest, rest_words);
    top[rest_words] = 0;
    add_carry(top, rest_words + 1, carry);
    return low + overlap + rest_words + (top[rest_words] != 0 ? 1 : 0);
}

std::uint64_t distance(std::int64_t low, std::int64_t high) {
    return static_cast<std::uint64_t>(high - low);
}

}  // namespace

void ExactFloat::set_add(ParallelContext parallel, ExactFloatView a, ExactFloatView b) {
    if (a.top() < b.top()) std::swap(a, b);
    const std::int64_t bottom = std::min(a.exp, b.exp);
    const std::uint64_t length = distance(bottom, a.top());
    require_capacity("ExactFloat::set_add()", AL, length + 1);

    T = base;
    exp = bottom;
    hash = check_add(a.hash, b.hash);
    if (b.top() < a.exp) {
        const std::uint64_t gap = distance(b.top(), a.exp);
        parallel_copy(parallel, T, b.T, b.L);
        std::fill_n(T + b.L, gap, Word{0});
        parallel_copy(parallel, T + b.L + gap, a.T, a.L);
        L = length;
    } else if (a.exp > b.exp) {
        const std::uint64_t low = distance(b.exp, a.exp);
        const std::uint64_t overlap = b.L - low;
        L = sum_layers(parallel, T, b.T, low, a.T, b.T + low, overlap, a.T + overlap, a.L - overlap);
    } else {
        const std::uint64_t low = distance(a.exp, b.exp);
        const std::uint64_t rest = low + b.L;
        L = sum_layers(parallel, T, a.T, low, a.T + low, b.T, b.L, a.T + rest, a.L - rest);
    }
}

ExactFloat& ExactFloat::operator-=(ExactFloatView view) {
    constexpr const char* function = "ExactFloat::operator-=()";
    const bool inside = view.L <= L && exp <= view.exp && top() >= view.top();
    const bool room = static_cast<std::uint64_t>(T - base) + L + 1 <= AL;
    if (!inside || !room) invalid_function_parameters(function);

    // The sentinel above the top word is consumed exactly when the difference is negative.
    T[L] = 1;
    Word* window = T + distance(exp, view.exp);
    const bool borrow = sub_words(window, window, view.T, view.L);
    sub_borrow(window + view.L, distance(view.top(), top()) + 1, borrow);
    if (T[L] == 0) throw UnsupportedNegativeException(function, "A negative value was encountered.");

    while (L > 0 && T[L - 1] == 0) --L;
    if (L == 0) throw UnsupportedZeroException(function, "Zero was encountered.");
    hash = check_sub(hash, view.hash);
    return *this;
}

}  // namespace qmp
