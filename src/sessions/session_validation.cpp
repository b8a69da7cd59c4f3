#include "sessions/session_validation.h"

#include "errors/recovered_errors.h"
#include "platform/build_identity.h"
#include "platform/os/process.h"
#include "platform/os/threads.h"
#include "platform/startup_state.h"
#include "sessions/validation_file.h"

namespace kelvara {

ValidationRecord validation_record(const RamSettings& settings, const RamComputation& computation,
                                   const SessionRecord& record) {
    const Constant& constant = settings.constant();
    ValidationRecord validation;
    validation.name = constant.short_name();
    validation.program = version_with_build();
    validation.tuning = build_identity().tag;
    validation.user = validation_user_name(program_directory());
    validation.system = system_info_text(record.system);

    validation.constant = constant.full_name();
    validation.algorithm = computation.long_name();
    validation.decimal_digits = record.decimal.digits;
    validation.hexadecimal_digits = record.hexadecimal.digits;
    validation.threading = settings.framework().to_string(settings.task_decomposition());
    validation.working_memory = record.working_memory;
    validation.total_memory = record.working_memory + record.twiddle_memory;

    validation.start_date = record.start_time;
    validation.end_date = record.end_time;
    validation.computation_seconds = record.total_seconds();
    validation.wall_seconds = record.wall_seconds();
    validation.utilization = Utilization::between(record.started, record.ended, qmp::os::active_processors());

    validation.last_digits = record.decimal.last_digits;
    validation.decimal_counts = record.decimal.counts;
    validation.hexadecimal_counts = record.hexadecimal.counts;
    validation.hash = record.decimal.hash;

    validation.spot_check = record.spot_check;
    validation.clocks = measure_clock_rates();
    validation.timer_check = judge_timers(
        ElapsedTimes::between(record.clocks_started, record.clocks_ended, validation.clocks.time_stamp_rate));
    validation.debugger_present = qmp::os::debugger_present();
    validation.recovered_errors = qmp::recovered_errors();
    validation.event_log = record.log.text();
    return validation;
}

}  // namespace kelvara
