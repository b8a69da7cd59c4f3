// The digit extractor's threads on cores of their own.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

#include "platform/processor_system.h"
#include "platform/topology.h"

namespace kelvara::bbp {

// Thread i goes to core i, and round again where there are more threads than cores.
class CoreBinder {
  public:
    CoreBinder(const qmp::CoreTable& cores, qmp::ProcessorSystem& system) : cores_(cores), system_(system) {}

    // Binds the calling thread, or leaves it where it is.
    void bind(std::uint64_t thread);
    // A core to which the system would not bind a thread.
    std::optional<std::uint64_t> refused_core() const;

  private:
    static constexpr std::uint64_t none = ~std::uint64_t{0};

    const qmp::CoreTable& cores_;
    qmp::ProcessorSystem& system_;
    std::atomic<std::uint64_t> refused_{none};
};

}  // namespace kelvara::bbp
