// From what a session knows of its run to what the validation file says of it.
#pragma once

#include "sessions/ram_settings.h"
#include "sessions/session_record.h"
#include "sessions/validation_record.h"

namespace kelvara {

// Of a finished Ram Only run whose report, spot check and machine stand in `record`. Measures the clocks'
// rates, so nothing else should run.
ValidationRecord validation_record(const RamSettings& settings, const RamComputation& computation,
                                   const SessionRecord& record);

}  // namespace kelvara
