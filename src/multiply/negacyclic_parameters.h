// Parameter objects whose transform also has a negacyclic form of the same length: products modulo R^n + 1
// beside those modulo R^n - 1, R the word radix and n the convolution's words. From both follows a product
// of twice the length (crt_mulp.h).
#pragma once

#include "multiply/transform_parameters.h"

namespace qmp {

class NegacyclicParameters : public TransformParameters {
  public:
    // As forward(): `transformed` holds operand_words. length <= convolution_words().
    virtual void forward_negacyclic(const MultiplyContext& context, Word* transformed, const Word* operand,
                                    std::uint64_t length) const = 0;
    // a * b modulo R^n + 1 to destination[0 .. n), n = convolution_words(); `a` is consumed, `b` is kept
    // and may be `a`. True when the residue is R^n, which n words do not hold: they are zero then.
    virtual bool inverse_multiply_negacyclic(const MultiplyContext& context, Word* a, const Word* b,
                                             Word* destination) const = 0;
};

}  // namespace qmp
