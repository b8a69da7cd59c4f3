#include "support/twiddle_memory.h"

namespace kelvara_test {

const qmp::TwiddleSet& shared_twiddles() {
    // Larger tables are built where a test needs them.
    static const TwiddleMemory twiddles(std::uint64_t{1} << 20, 20480);
    return *twiddles.get();
}

}  // namespace kelvara_test
