// One convolution size of the vector transform as the rest of the program sees it.
#pragma once

#include "multiply/negacyclic_parameters.h"
#include "multiply/vst/plan.h"
#include "multiply/vst/transform.h"

namespace qmp::vst {

class VstTransformParameters final : public NegacyclicParameters {
  public:
    explicit VstTransformParameters(const SizeParams& size);

    const Plan& plan() const { return plan_; }

    void forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                 std::uint64_t length) const override;
    void forward_for_square(const MultiplyContext& context, Word* transformed, const Word* operand,
                            std::uint64_t length) const override;
    void inverse_multiply(const MultiplyContext& context, Word* a, const Word* b, Word* destination,
                          std::uint64_t first, std::uint64_t end) const override;
    void inverse_square(const MultiplyContext& context, Word* a, Word* destination, std::uint64_t first,
                        std::uint64_t end) const override;
    bool compatible_with(const TransformParameters& other) const override;
    OperandState begin_forward(const MultiplyContext& context, Word* transformed, const Word* operand,
                               std::uint64_t length) const override;
    void finish_multiply(const MultiplyContext& context, Word* a, OperandState state_a, Word* b,
                         OperandState state_b, Word* destination, std::uint64_t first,
                         std::uint64_t end) const override;
    void finish_square(const MultiplyContext& context, Word* space, Word* a, OperandState state,
                       Word* destination, std::uint64_t first, std::uint64_t end) const override;

    void forward_negacyclic(const MultiplyContext& context, Word* transformed, const Word* operand,
                            std::uint64_t length) const override;
    bool inverse_multiply_negacyclic(const MultiplyContext& context, Word* a, const Word* b,
                                     Word* destination) const override;

    // A whole product in one go, which spares both operands a way through memory: the bytes [first, end) of
    // a * b; a square when the operands are the same bytes. `context.scratch` holds two transformed operands
    // (one for a square) and scratch_words.
    void product(const char* function, const MultiplyContext& context, void* destination, std::uint64_t first,
                 std::uint64_t end, const void* a, std::uint64_t bytes_a, const void* b,
                 std::uint64_t bytes_b) const;

  private:
    void multiply(const char* function, const MultiplyContext& context, Word* a, Word* b,
                  Transform::RowWork work, Word* destination, std::uint64_t first, std::uint64_t end) const;
    void transform(const char* function, const MultiplyContext& context, Word* transformed,
                   const Word* operand, std::uint64_t length, bool negacyclic) const;

    Plan plan_;
};

}  // namespace qmp::vst
