// Exact division of many numbers by one odd divisor that is long enough for transforms: its inverse modulo a
// power of two by Newton's iteration from the lowest words up, kept transformed, and one product for each
// quotient.
#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "multiply/multiply_context.h"
#include "multiply/transform_parameters.h"
#include "multiply/word.h"

namespace qmp {

class ExactDivisor {
  public:
    // The shortest quotients that it is made for, in words.
    static constexpr std::uint64_t shortest_quotient = 32;

    // By d[0 .. m), odd, with d[m - 1] != 0, for quotients of up to `words` words, at least
    // shortest_quotient. The context's scratch serves products of 2 words words.
    ExactDivisor(const MultiplyContext& context, const Word* d, std::uint64_t m, std::uint64_t words);

    // x = x / d in place: x has n >= m words, and d divides it; otherwise the result means nothing. Returns
    // the words of the quotient, n - m or n - m + 1 of them; those above are left as garbage. Any thread,
    // with scratch of its own for products of 2 words words. BufferTooSmallException when the quotient is too
    // long.
    std::uint64_t divide(const MultiplyContext& context, Word* x, std::uint64_t n) const;

  private:
    struct Free {
        void operator()(Word* memory) const { ::operator delete[](memory, std::align_val_t{64}); }
    };

    void set_inverse(const MultiplyContext& context, Word* inverse) const;

    std::vector<Word> divisor_;
    std::uint64_t words_;
    TransformParametersBox box_;
    const TransformParameters* parameters_;
    std::unique_ptr<Word[], Free> inverse_;  // transformed
};

}  // namespace qmp
