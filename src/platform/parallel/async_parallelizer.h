// The framework over the standard library's asynchronous calls.
//
// An exception that escapes a task comes back through the call's future: it propagates from run_in_parallel
// after the other tasks have finished, wherever the task ran. Where both tasks of a pair throw, the
// exception of the calling thread's is the one that propagates.
#pragma once

#include <cstdint>
#include <future>

#include "platform/parallel/halving_parallelizer.h"

namespace qmp {

class AsyncParallelizer final : public HalvingParallelizer {
  public:
    static constexpr const char* type_name = "cppasync";
    static constexpr const char* display_name = "C++ std::async()";

    AsyncParallelizer() : HalvingParallelizer(usual_most_pairs()) {}

    using HalvingParallelizer::run_in_parallel;
    // a is the asynchronous call. std::system_error when the system grants no thread and the launch policy
    // leaves no choice.
    void run_in_parallel(BasicAction& a, BasicAction& b) override;
    const char* get_type_name() const override { return type_name; }
    const char* get_display_name() const override { return display_name; }
    std::uint64_t print_menu_options() const override;
    void handle_menu_option(std::uint64_t option) override;

    // Restoring leaves the launch policy as it is; only the menu changes it.
    std::string print_settings() const override;
    void load_settings(TextCursor& cursor) override;
    notation::Object write_config() const override;
    void read_config(const notation::Object& config) override;

    bool async_only() const { return async_only_; }
    std::launch launch_policy() const { return launch_policy_; }

  protected:
    std::string summary_remark() const override;

  private:
    bool async_only_ = true;
    std::launch launch_policy_ = std::launch::async;
};

}  // namespace qmp
