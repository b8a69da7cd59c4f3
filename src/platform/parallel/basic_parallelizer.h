// The one way in which work becomes parallel: a framework runs the numbered tasks of an action.
//
// run_in_parallel may be called from any thread, also from inside a running task; it returns when all
// tasks have finished. The framework never looks inside the tasks and decides only how they reach the
// processors. An exception that a task throws on the calling thread propagates; what happens to one
// thrown on another thread is each framework's own rule.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/component_settings.h"
#include "platform/parallel/basic_action.h"

namespace qmp {

class BasicParallelizer : public ComponentSettings {
  public:
    // Runs action.run(i) once for every i in [start, end), in any order. Empty ranges return at once; a
    // single task runs on the calling thread. The default halves the range recursively.
    virtual void run_in_parallel(BasicAction& action, std::uint64_t start, std::uint64_t end);
    // Runs a.run(0) and b.run(0), possibly at the same time.
    virtual void run_in_parallel(BasicAction& a, BasicAction& b) = 0;

    // Processors that have nothing to do, as far as the framework knows: a hint for callers that can do with
    // fewer tasks. None idle: the calling thread is as fast by itself.
    virtual std::uint64_t idle_processors() const { return ~std::uint64_t{0}; }

    // Starts the threads before the timed part of a computation, and lets them go after it.
    virtual void warm_up() {}
    virtual void reset() {}

    virtual const char* get_type_name() const = 0;
    virtual const char* get_display_name() const = 0;

    // "Push Pool  ->  16 / ?" and the framework's own remarks; `tasks` is the task decomposition.
    virtual std::string to_string(std::uint64_t tasks) const;
    virtual void print_summary(std::uint64_t tasks) const;

    // The framework's own menu lines; returns the highest valid option number.
    virtual std::uint64_t print_menu_options() const { return 3; }
    virtual void handle_menu_option(std::uint64_t) {}

    // Worker-thread limit; 0 is unlimited.
    std::uint64_t threads = 0;

  protected:
    // What the framework adds to its summary: "  (randomization on)".
    virtual std::string summary_remark() const { return {}; }
};

}  // namespace qmp
