#include "platform/parallel/serial_parallelizer.h"

namespace qmp {

void SerialParallelizer::run_in_parallel(BasicAction& action, std::uint64_t start, std::uint64_t end) {
    for (std::uint64_t i = start; i < end; ++i) action.run(i);
}

void SerialParallelizer::run_in_parallel(BasicAction& a, BasicAction& b) {
    a.run(0);
    b.run(0);
}

}  // namespace qmp
