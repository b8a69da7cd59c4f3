// Hexadecimal digits of pi from a position on, without those before it.
#pragma once

#include <string>

#include "console/progress.h"
#include "constants/bbp/settings.h"
#include "platform/processor_system.h"
#include "platform/topology.h"

namespace kelvara::bbp {

// Upper-case digits from 16^-(offset + 1) on: settings.digits that are right, and guard digits to the end of
// the precision. Threads are pinned to these cores where the settings say so.
std::string extract_digits(const Settings& settings, qmp::Progress& progress, const qmp::CoreTable& cores,
                           qmp::ProcessorSystem& system = qmp::processor_system());

}  // namespace kelvara::bbp
