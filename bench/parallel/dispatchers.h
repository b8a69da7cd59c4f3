// Everything that can hand out numbered tasks: our frameworks, and their rivals.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/parallel/parallel_context.h"

namespace bench {

class Dispatcher {
  public:
    virtual ~Dispatcher() = default;
    virtual std::string name() const = 0;
    // task.run(i) for every i in [0, n).
    virtual void run_range(qmp::BasicAction& task, std::uint64_t n) = 0;
    // 2^depth runs of task.run(0), by pairs of halves.
    virtual void run_halves(qmp::BasicAction& task, std::uint64_t depth) = 0;
    // The same, but where no processor is idle a thread does both halves itself. False where there is no such
    // thing.
    virtual bool run_halves_where_idle(qmp::BasicAction&, std::uint64_t) { return false; }
};

// Those of the keys given.
std::vector<std::unique_ptr<Dispatcher>> framework_dispatchers(const std::vector<std::string>& keys);
// std::async by hand, and OpenMP.
std::vector<std::unique_ptr<Dispatcher>> rival_dispatchers();

}  // namespace bench
