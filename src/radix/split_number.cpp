#include "radix/split_number.h"

#include <algorithm>

#include "console/console.h"

namespace qmp {

Word integer_part(BigFloatView x) {
    if (x.is_zero()) return 0;
    if (x.top() > 1 || !x.sign) console::fatal_error("Number is out of range.");
    return x.top() == 1 ? x.T[x.L - 1] : 0;
}

SplitNumber::SplitNumber(const ComputeContext& context, BigFloatView x, std::uint64_t most_words)
    : integer(integer_part(x)) {
    if (x.is_zero()) return;
    if (x.top() >= 0) {
        fraction = FractionView{x.T, x.L - static_cast<std::uint64_t>(x.top())}.cut(most_words);
        return;
    }
    const std::uint64_t zeros = static_cast<std::uint64_t>(-x.top());
    if (zeros >= most_words) return;
    x = x.cut(most_words - zeros);
    copy = context.allocate(zeros + x.L);
    std::copy_n(x.T, x.L, copy.data());
    std::fill_n(copy.data() + x.L, zeros, Word{0});
    fraction = {copy.data(), zeros + x.L};
}

}  // namespace qmp
