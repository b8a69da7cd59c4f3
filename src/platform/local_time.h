// The local time as texts.
#pragma once

#include <string>

#include "platform/os/clock.h"

namespace kelvara {

// "Thu Nov 12 21:11:02 2026"
std::string local_time_text(const qmp::os::LocalTime& time = qmp::os::local_time());
// "20261112-211102", for names of files.
std::string file_name_time(const qmp::os::LocalTime& time = qmp::os::local_time());

}  // namespace kelvara
