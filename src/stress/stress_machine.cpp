#include "stress/stress_machine.h"

#include "platform/topology.h"

namespace kelvara {

StressMachine::StressMachine()
    : clocks(&qmp::clock_system()),
      cores(qmp::core_table().size()),
      bind_to_core([](std::uint64_t core) { return qmp::bind_to_core(core); }),
      start_thread(qmp::start_child_thread) {}

}  // namespace kelvara
