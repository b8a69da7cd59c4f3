// The framework without threads: every task runs on the calling thread, in order.
#pragma once

#include "platform/parallel/basic_parallelizer.h"

namespace qmp {

class SerialParallelizer final : public BasicParallelizer {
  public:
    static constexpr const char* type_name = "none";
    static constexpr const char* display_name = "None (No Multi-threading)";

    void run_in_parallel(BasicAction& action, std::uint64_t start, std::uint64_t end) override;
    // a first.
    void run_in_parallel(BasicAction& a, BasicAction& b) override;
    const char* get_type_name() const override { return type_name; }
    const char* get_display_name() const override { return display_name; }
};

}  // namespace qmp
