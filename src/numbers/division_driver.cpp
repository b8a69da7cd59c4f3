#include "numbers/division_driver.h"

#include "numbers/newton.h"

namespace qmp {
namespace {

std::uint64_t scratch_bytes(std::uint64_t multiply_bytes, std::uint64_t newton_words) {
    return multiply_bytes + newton_words * sizeof(Word) + 2 * checked_array_overhead(64);
}

// A timed step, ended also when an exception passes.
class IterationStep {
  public:
    IterationStep(Progress* progress, std::string_view title, std::string_view status) : progress_(progress) {
        progress_->begin_step(title, status);
    }
    ~IterationStep() { progress_->end_step(); }
    IterationStep(const IterationStep&) = delete;
    IterationStep& operator=(const IterationStep&) = delete;

  private:
    Progress* progress_;
};

}  // namespace

std::uint64_t divide_bytes(std::uint64_t p, std::uint64_t tasks) {
    return scratch_bytes(newton_multiply_scratch_bytes(p, tasks), division_scratch_words(p));
}

std::uint64_t inverse_square_root_bytes(std::uint64_t p, std::uint64_t tasks) {
    return scratch_bytes(newton_multiply_scratch_bytes(p, tasks), inverse_square_root_scratch_words(p));
}

OwnedBigFloat divide(const ComputeContext& context, BigFloatView a, BigFloatView b, std::uint64_t p) {
    IterationStep step(context.progress, "Division...", "Division");
    ScopedLabel label(context.progress, "Iterating: ", 'w');
    OwnedBigFloat quotient(context.region, p + 3);
    const CheckedWords products =
        context.allocate(newton_multiply_scratch_bytes(p, context.parallel.tds) / sizeof(Word));
    const CheckedWords scratch = context.allocate(division_scratch_words(p));
    BigFloatR_div_P(context.multiply(products), quotient.number, a, b, p, scratch.data(), scratch.words(),
                    context.progress);
    return quotient;
}

OwnedBigFloat inverse_square_root(const ComputeContext& context, Word w, std::uint64_t p) {
    IterationStep step(context.progress, "InvSqrt...", "InvSqrt");
    return iterate_inverse_square_root(context, w, p);
}

OwnedBigFloat iterate_inverse_square_root(const ComputeContext& context, Word w, std::uint64_t p) {
    ScopedLabel label(context.progress, "Iterating: ", 'w');
    OwnedBigFloat root(context.region, p + 7);
    const CheckedWords products =
        context.allocate(newton_multiply_scratch_bytes(p, context.parallel.tds) / sizeof(Word));
    const CheckedWords scratch = context.allocate(inverse_square_root_scratch_words(p));
    BigFloatR_invsqrt_uW_P(context.multiply(products), root.number, w, p, scratch.data(), scratch.words(),
                           context.progress);
    return root;
}

}  // namespace qmp
