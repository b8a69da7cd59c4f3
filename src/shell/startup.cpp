#include "shell/startup.h"

#include "console/console.h"
#include "platform/os/crash.h"
#include "platform/os/process.h"
#include "platform/startup_state.h"
#include "platform/topology.h"
#include "shell/crash_handler.h"
#include "shell/feature_check.h"
#include "shell/group_check.h"
#include "shell/leading_flags.h"
#include "shell/resume_check.h"

namespace kelvara {

int start_up(CommandLine& command_line, Dispatcher dispatcher) {
    parse_leading_flags(command_line);
    // A computation of days leaves the machine usable.
    qmp::os::lower_process_priority();
    describe_program();
    qmp::os::install_crash_handler(handle_crash);
    check_processor_features();
    check_processor_groups();
    IntegrityCheck integrity_check(startup_state().program_path);
    describe_program(integrity_check.digest(), to_text(integrity_check.outcome()));
    startup_state().program_digest = integrity_check.digest();
    // They are made, and printed, before any worker thread asks for them.
    qmp::core_table();
    qmp::numa_table();
    qmp::console::newline();
    if (!resume_interrupted_computation(integrity_check)) dispatcher(command_line, integrity_check);
    return 0;
}

}  // namespace kelvara
