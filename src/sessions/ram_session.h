// One Ram Only computation from header to report.
//
// The working memory is reserved once, before the computation begins; every number of the computation is
// carved from it. Exceptions of the computation propagate to the caller. A digit file that cannot be
// finished (a full disk) does not stop the run: the result is still verified and reported, and the file's
// exception is thrown after the report.
#pragma once

#include <memory>

#include "console/progress.h"
#include "platform/memory/basic_allocator.h"
#include "sessions/memory_plan.h"
#include "sessions/ram_settings.h"
#include "sessions/session_record.h"

namespace kelvara {

class RamSession {
  public:
    // The settings outlive the session, and so does the observer, which is told every step of the
    // computation besides the console.
    explicit RamSession(const RamSettings& settings, qmp::Progress* observer = nullptr)
        : settings_(settings), observer_(observer) {}

    void run();

    const SessionRecord& record() const { return record_; }

  private:
    struct Memory;  // the two heap blocks and what stands in them

    void warn_if_memory_is_short(std::uint64_t bytes) const;
    void print_header(const RamComputation& computation) const;
    void reserve(Memory& memory, const MemoryPlan& plan);
    void compute_and_write(Memory& memory, const RamComputation& computation);
    void check_digits();

    const RamSettings& settings_;
    qmp::Progress* observer_;
    SessionRecord record_;
};

}  // namespace kelvara
