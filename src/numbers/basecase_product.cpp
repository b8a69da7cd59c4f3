#include "numbers/basecase_product.h"

#include <utility>

#include "multiply/basecase/kernels.h"

namespace qmp {

void basecase_product(Word* destination, const Word* a, std::uint64_t la, const Word* b, std::uint64_t lb) {
    if (la < lb) {
        std::swap(a, b);
        std::swap(la, lb);
    }
    if (la == 1) {
        const DoubleWord product = static_cast<DoubleWord>(a[0]) * b[0];
        destination[0] = low_word(product);
        destination[1] = high_word(product);
        return;
    }
    qmb_MULB_c64i_mulB(destination, a, la, b, lb);
}

}  // namespace qmp
