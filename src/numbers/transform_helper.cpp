#include "numbers/transform_helper.h"

#include <algorithm>

#include "errors/check.h"
#include "errors/fatal.h"
#include "multiply/multiply.h"
#include "numbers/big_float_window.h"
#include "numbers/transformed_operand.h"

namespace qmp {
namespace {

constexpr const char* function = "TransformHelper::TransformHelper()";

// Scratch of one convolution: the transformed x, the transformed other operand, and what an operation takes.
struct Workspace {
    MultiplyContext rest;
    Word* shared;
    Word* other;

    Workspace(const MultiplyContext& context, const TransformParameters& transform)
        : rest(checked(context, transform).after(2 * transform.operand_words, function)),
          shared(context.scratch),
          other(context.scratch + transform.operand_words) {}

    static const MultiplyContext& checked(const MultiplyContext& context,
                                          const TransformParameters& transform) {
        require_capacity(function, context.scratch_words,
                         2 * transform.operand_words + transform.scratch_words);
        return context;
    }
};

void check_fits(const TransformParameters& transform, std::uint64_t length) {
    if (length > transform.convolution_words()) invalid_function_parameters(function);
}

// Runs both products, each a callable of (transform, workspace, transformed x): with one transform of x
// where the parameter objects of both sizes are compatible, with one per product otherwise.
template <typename Transformed, typename View, typename First, typename Second>
void share(const MultiplyContext& context, std::uint64_t size1, std::uint64_t size2, View x, First&& first,
           Second&& second) {
    TransformParametersBox box1;
    TransformParametersBox box2;
    const TransformParameters& transform1 = construct_transform(box1, size1);
    const TransformParameters& transform2 = construct_transform(box2, size2);
    const auto with_transform = [&](const TransformParameters& transform, auto&&... products) {
        const Workspace workspace(context, transform);
        check_fits(transform, x.L);
        Transformed shared;
        shared.forward(workspace.rest, transform, workspace.shared, x);
        (products(transform, workspace, shared), ...);
    };
    if (transform1.compatible_with(transform2)) {
        with_transform(size1 >= size2 ? transform1 : transform2, first, second);
    } else {
        with_transform(transform1, first);
        with_transform(transform2, second);
    }
}

}  // namespace

TransformHelper::TransformHelper(const MultiplyContext& context, BigFloat& p1, std::uint64_t p1_precision,
                                 BigFloat& p2, std::uint64_t p2_precision, BigFloatView a, BigFloatView b,
                                 BigFloatView x) {
    if (x.is_zero()) {
        p1.set_zero();
        p2.set_zero();
        return;
    }
    const std::uint64_t x_precision = std::max(p1_precision, p2_precision);
    const std::uint64_t m = std::min(x_precision, x.L);
    const auto product = [](BigFloat& destination, std::uint64_t precision, BigFloatView operand) {
        return
            [&destination, precision, operand](const TransformParameters& transform,
                                               const Workspace& workspace, BigFloatTransformR& shared) {
                if (operand.is_zero()) return destination.set_zero();
                check_fits(transform, operand.L);
                BigFloatTransformR other;
                other.forward(workspace.rest, transform, workspace.other, operand);
                const std::int64_t top = operand.top() + shared.exp + static_cast<std::int64_t>(shared.L);
                BigFloatTransformR::inverse_fmul(workspace.rest, destination, other, shared, top, precision);
            };
    };
    share<BigFloatTransformR>(context, std::min(a.L, p1_precision) + m + 6,
                              std::min(b.L, p2_precision) + m + 6, x.cut(kept_words(x_precision, x.L)),
                              product(p1, p1_precision, a.cut(kept_words(p1_precision, a.L))),
                              product(p2, p2_precision, b.cut(kept_words(p2_precision, b.L))));
}

TransformHelper::TransformHelper(const MultiplyContext& context, ExactFloat& p1, ExactFloat& p2,
                                 ExactFloatView a, ExactFloatView b, ExactFloatView x) {
    const auto product = [](ExactFloat& destination, ExactFloatView operand) {
        return [&destination, operand](const TransformParameters& transform, const Workspace& workspace,
                                       ExactFloatTransformR& shared) {
            ExactFloatTransformR other;
            other.forward(workspace.rest, transform, workspace.other, operand);
            ExactFloatTransformR::inverse_fmul(workspace.rest, destination, other, shared);
        };
    };
    share<ExactFloatTransformR>(context, a.L + x.L, b.L + x.L, x, product(p1, a), product(p2, b));
}

std::uint64_t TransformHelper::scratch_words(std::uint64_t n, std::uint64_t tasks) {
    return scratch_words_for(n, tasks);
}

}  // namespace qmp
