#include "multiply/multiply.h"

#include "multiply/trim.h"

namespace qmp {
namespace {

// The table holds algorithms on 64-bit words only.
const Algorithm64& algorithm_for(std::uint64_t n) {
    return static_cast<const Algorithm64&>(basic_table_64().get_algorithm(n));
}

}  // namespace

void multiply(const MultiplyContext& context, Word* destination, const Word* a, std::uint64_t la,
              const Word* b, std::uint64_t lb) {
    algorithm_for(la + lb).multiply(context, destination, a, la, b, lb);
}

void multiply_upper(const MultiplyContext& context, Word* destination, std::uint64_t skip, std::uint64_t end,
                    const Word* a, std::uint64_t la, const Word* b, std::uint64_t lb) {
    const UpperProduct<Word> p(skip, end, a, la, b, lb);
    algorithm_for(p.la + p.lb).upper_product(context, destination, p.skip, p.end, p.a, p.la, p.b, p.lb);
}

void multiply_upper_halved(const MultiplyContext& context, Word* destination, std::uint64_t skip,
                           std::uint64_t end, const Word* a, std::uint64_t la, const Word* b,
                           std::uint64_t lb) {
    const UpperProduct<Word> p(skip, end, a, la, b, lb);
    algorithm_for(p.la + p.lb)
        .upper_product_halved(context, destination, p.skip, p.end, p.a, p.la, p.b, p.lb);
}

void square_upper(const MultiplyContext& context, Word* destination, std::uint64_t skip, std::uint64_t end,
                  const Word* a, std::uint64_t la) {
    const UpperSquare<Word> p(skip, end, a, la);
    algorithm_for(2 * p.la).upper_square(context, destination, p.skip, p.end, p.a, p.la);
}

const TransformParameters& construct_transform(TransformParametersBox& box, std::uint64_t n) {
    return algorithm_for(n).construct(box, n);
}

const TransformParameters& construct_transform(TransformParametersBox& box, std::uint64_t la,
                                               std::uint64_t lb) {
    return algorithm_for(la + lb).construct(box, la, lb);
}

std::uint64_t iPsize(std::uint64_t n, std::uint64_t tasks) {
    return basic_table_64().iPsize(n, tasks);
}

}  // namespace qmp
