// Two operands of a convolution, held transformed in scratch.
//
// The merges of a binary splitting form products that share operands: an operand is transformed once and
// serves several of them. Once it is held here its words are free, so a product may be written over the
// operands that it came from; that is what lets a merge work inside the buffers of its halves. Products
// too short for transforms are held as copies and multiplied directly. The scratch that products of n words
// need, iPsize(n), serves a pair for n words.
#pragma once

#include <cstdint>

#include "multiply/transform_parameters.h"
#include "numbers/big_float.h"
#include "numbers/exact_float.h"
#include "numbers/transformed_operand.h"

namespace qmp {

// Products up to this many words are formed from copies.
constexpr std::uint64_t transform_pair_short_product = 58;

// The two operand slots, and the scratch behind them. `function` names a capacity error.
class TransformSlots {
  protected:
    TransformSlots(const MultiplyContext& context, std::uint64_t n, const char* function);

    bool is_short() const { return parameters_ == nullptr; }

    TransformParametersBox box_;
    const TransformParameters* parameters_ = nullptr;
    MultiplyContext rest_;  // what the operations use
    Word* data_[2];
};

class ExactTransformPair : TransformSlots {
  public:
    // For products of up to n words.
    ExactTransformPair(const MultiplyContext& context, std::uint64_t n)
        : TransformSlots(context, n, "ExactTransformPair::ExactTransformPair()") {}

    void load(unsigned slot, ExactFloatView operand);
    // The product of the two slots, whole. The operand in `consumed` is gone afterwards, the other one
    // stays. Capacity of the destination: the sum of the operands' lengths.
    void multiply(ExactFloat& destination, unsigned consumed);
    // The square of a slot, which stays; the operand in the other one is gone.
    void square(ExactFloat& destination, unsigned slot);

  private:
    ExactFloatTransformR transformed_[2];
    ExactFloatView short_[2];
};

class FloatTransformPair : TransformSlots {
  public:
    FloatTransformPair(const MultiplyContext& context, std::uint64_t n)
        : TransformSlots(context, n, "FloatTransformPair::FloatTransformPair()") {}

    void load(unsigned slot, BigFloatView operand);
    // The product to p words.
    void multiply(BigFloat& destination, unsigned consumed, std::uint64_t p);
    // The square of a slot to p words, as above.
    void square(BigFloat& destination, unsigned slot, std::uint64_t p);

  private:
    BigFloatTransformR transformed_[2];
    BigFloatView short_[2];
};

}  // namespace qmp
