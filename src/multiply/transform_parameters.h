// One convolution size of one algorithm: how operands are transformed, multiplied and brought back.
//
// Built into a TransformParametersBox (no heap). A transformed operand is operand_words words in the
// caller's memory; only buffers made by the same object, or by one that compatible_with() accepts, may
// be combined. Products are cyclic: those longer than the convolution wrap around, so that words near
// both ends of the product are not valid (see BigFloatTransform).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "multiply/multiply_context.h"
#include "multiply/word.h"

namespace qmp {

// What was done to an operand: all of its transform, or the first part.
enum class OperandState : std::uint8_t { whole, begun };

class TransformParameters {
 public:
    virtual ~TransformParameters() = default;

    std::uint64_t convolution_bits = 0;  // a multiple of 64: the length asked for
    std::uint64_t operand_words = 0;     // of one transformed operand, a multiple of 8
    std::uint64_t scratch_words = 0;     // that one operation below needs

    std::uint64_t convolution_words() const { return convolution_bits / 64; }

    // length <= convolution_words(). `transformed` may not overlap the operand. `context.scratch` holds
    // scratch_words.
    virtual void forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                         std::uint64_t length) const = 0;
    virtual void forward_for_square(const MultiplyContext& context, Word* transformed, const Word* operand,
                                    std::uint64_t length) const = 0;
    // Writes the product's words [first, end) to destination[0 .. end - first). `a` is consumed; `b` is
    // kept. end <= convolution_words(). The destination may not overlap a, b or scratch.
    virtual void inverse_multiply(const MultiplyContext& context, Word* a, const Word* b, Word* destination,
                                  std::uint64_t first, std::uint64_t end) const = 0;
    virtual void inverse_square(const MultiplyContext& context, Word* a, Word* destination, std::uint64_t first,
                                std::uint64_t end) const = 0;
    virtual bool compatible_with(const TransformParameters& other) const = 0;

    // The same in two parts. Where the last layers of a transform and the pointwise product are one way
    // through memory, an operand is better left begun: finish_multiply() does what is left of either
    // transform on its way. A begun operand is good for nothing else. `b` is whole afterwards.
    virtual OperandState begin_forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                                       std::uint64_t length) const {
        forward(context, transformed, operand, length);
        return OperandState::whole;
    }
    virtual void finish_multiply(const MultiplyContext& context, Word* a, OperandState, Word* b, OperandState,
                                 Word* destination, std::uint64_t first, std::uint64_t end) const {
        inverse_multiply(context, a, b, destination, first, end);
    }
    // The square of `a`, which is kept and whole afterwards; `space`, of operand_words, is overwritten.
    virtual void finish_square(const MultiplyContext& context, Word* space, Word* a, OperandState,
                               Word* destination, std::uint64_t first, std::uint64_t end) const {
        std::copy_n(a, operand_words, space);
        inverse_multiply(context, space, a, destination, first, end);
    }
};

// Storage for one parameter object of any algorithm.
class TransformParametersBox {
 public:
    TransformParametersBox() = default;
    TransformParametersBox(const TransformParametersBox&) = delete;
    TransformParametersBox& operator=(const TransformParametersBox&) = delete;
    ~TransformParametersBox() {
        if (object_) object_->~TransformParameters();
    }

    template <typename T, typename... Arguments>
    T& emplace(Arguments&&... arguments) {
        static_assert(sizeof(T) <= capacity && alignof(T) <= 64);
        if (object_) object_->~TransformParameters();
        object_ = nullptr;  // should the constructor throw
        T* object = ::new (static_cast<void*>(storage_)) T(std::forward<Arguments>(arguments)...);
        object_ = object;
        return *object;
    }
    const TransformParameters& operator*() const { return *object_; }
    const TransformParameters* operator->() const { return object_; }

 private:
    static constexpr std::size_t capacity = 512;
    alignas(64) std::byte storage_[capacity];
    TransformParameters* object_ = nullptr;
};

}  // namespace qmp
