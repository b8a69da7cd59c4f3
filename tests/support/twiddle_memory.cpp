#include "support/twiddle_memory.h"

#include <algorithm>

#include "multiply/algorithm_table.h"

namespace kelvara_test {

const qmp::TwiddleSet& shared_twiddles() {
    // Larger tables are built where a test needs them.
    static const TwiddleMemory twiddles(
        std::min<std::uint64_t>(qmp::basic_table_64().largest_product(), 20480));
    return *twiddles.get();
}

}  // namespace kelvara_test
