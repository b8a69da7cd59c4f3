#include "series/transform_pair.h"

#include <algorithm>

#include "multiply/multiply.h"

namespace qmp {

namespace {

template <typename View>
View copied(Word* buffer, View operand) {
    std::copy_n(operand.T, operand.L, buffer);
    operand.T = buffer;
    return operand;
}

}  // namespace

TransformSlots::TransformSlots(const MultiplyContext& context, std::uint64_t n, const char* function)
    : rest_(context) {
    std::uint64_t slot = (n + 7) & ~std::uint64_t{7};
    if (n > transform_pair_short_product) {
        parameters_ = &construct_transform(box_, n);
        slot = parameters_->operand_words;
    }
    data_[0] = context.scratch;
    data_[1] = context.scratch + slot;
    rest_ = context.after(2 * slot, function);
}

void ExactTransformPair::load(unsigned slot, ExactFloatView operand) {
    if (is_short()) {
        short_[slot] = copied(data_[slot], operand);
    } else {
        transformed_[slot].forward(rest_, *parameters_, data_[slot], operand);
    }
}

void ExactTransformPair::multiply(ExactFloat& destination, unsigned consumed) {
    const unsigned kept = 1 - consumed;
    if (is_short()) {
        destination.set_mul(rest_, short_[consumed], short_[kept]);
    } else {
        ExactFloatTransformR::inverse_fmul(rest_, destination, transformed_[consumed], transformed_[kept]);
    }
}

void ExactTransformPair::square(ExactFloat& destination, unsigned slot) {
    if (is_short()) {
        destination.set_mul(rest_, short_[slot], short_[slot]);
    } else {
        ExactFloatTransformR::inverse_fsqr_kept(rest_, destination, transformed_[slot], data_[1 - slot]);
    }
}

void FloatTransformPair::load(unsigned slot, BigFloatView operand) {
    if (is_short()) {
        short_[slot] = copied(data_[slot], operand);
    } else {
        transformed_[slot].forward(rest_, *parameters_, data_[slot], operand);
    }
}

void FloatTransformPair::multiply(BigFloat& destination, unsigned consumed, std::uint64_t p) {
    const unsigned kept = 1 - consumed;
    if (is_short()) {
        destination.set_mul(rest_, short_[consumed], short_[kept], p);
        return;
    }
    BigFloatTransformR& a = transformed_[consumed];
    BigFloatTransformR& b = transformed_[kept];
    const std::int64_t end = a.exp + b.exp + static_cast<std::int64_t>(a.L + b.L);
    BigFloatTransformR::inverse_fmul(rest_, destination, a, b, end, p);
}

void FloatTransformPair::square(BigFloat& destination, unsigned slot, std::uint64_t p) {
    if (is_short()) {
        destination.set_sqr(rest_, short_[slot], p);
        return;
    }
    BigFloatTransformR& a = transformed_[slot];
    BigFloatTransformR::inverse_fsqr_kept(rest_, destination, a, data_[1 - slot],
                                          2 * (a.exp + static_cast<std::int64_t>(a.L)), p);
}

}  // namespace qmp
