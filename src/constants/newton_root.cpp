#include "constants/newton_root.h"

#include <algorithm>

#include "errors/exception.h"
#include "multiply/multiply.h"
#include "numbers/division_driver.h"
#include "numbers/newton.h"
#include "series/timed_step.h"

namespace kelvara {

using qmp::ScopedLabel;
using qmp::Word;

namespace {

std::uint64_t product_scratch_bytes(std::uint64_t n, std::uint64_t tasks) {
    if (n > qmp::basic_table_64().largest_product()) {
        throw qmp::StringException("", "Internal Error: Maximum Size Exceeded");
    }
    return qmp::iPsize(n, tasks);
}

}  // namespace

SquareRootNewton::SquareRootNewton(std::uint64_t precision, std::uint64_t tasks, Word n)
    : RamComputation(precision, tasks), n_(n) {
    const std::uint64_t p = precision_;
    memory_estimate_ = product_scratch_bytes(p + 102, tasks_) + 16 * (p + 100) + 88;
    memory_taken_ = sizeof(Word) * (p + 7) + qmp::inverse_square_root_bytes(p, tasks_);
}

std::uint64_t SquareRootNewton::largest_product() const {
    return qmp::newton_largest_product(precision_);
}

qmp::OwnedBigFloat SquareRootNewton::compute(const qmp::ComputeContext& context) const {
    const qmp::TimedStep step(context.progress, "InvSqrt...", "InvSqrt");
    qmp::OwnedBigFloat root = qmp::iterate_inverse_square_root(context, n_, precision_);
    {
        const ScopedLabel label(context.progress, "Multiplying", 'w');
        root.number.mul_uW(context.parallel, n_);
    }
    finish(context, root.number);
    return root;
}

void GoldenRatioNewton::finish(const qmp::ComputeContext& context, qmp::BigFloat& root) const {
    constexpr Word half = Word{1} << 63;
    const ScopedLabel label(context.progress, "Shifting", 'w');
    root.exp -= 1;
    root.mul_uW(context.parallel, half);
    root.add_ip(half, -1);
}

}  // namespace kelvara
