#include "unit.h"

#include <gmp.h>

#include "support/timing.h"
#include "support/workspace.h"

namespace bench {

double measure_unit() {
    constexpr mp_size_t words = 1'000'000;
    constexpr double budget = 0.8;  // three products
    const Words a = random_words(words, 1);
    const Words b = random_words(words, 2);
    Words product(2 * words);
    return measure([&] { mpn_mul_n(product.data(), a.data(), b.data(), words); }, budget);
}

}  // namespace bench
