// The report at the end of a session.
#pragma once

#include <string>

#include "sessions/session_record.h"

namespace kelvara {

// Start and end, computation and wall time, processor utilisation, the last digits, the result's hash and
// the files.
void print_report(const SessionRecord& record);

// The last digits in lines of 50, in groups of 10, each line followed by the position of its last digit.
// `digits` end at position `last_position`.
void print_last_digits(const std::string& digits, std::uint64_t last_position);

}  // namespace kelvara
