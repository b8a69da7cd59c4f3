// Linux's error numbers as the codes of error_codes.h.
#pragma once

#include "platform/os/error_codes.h"

namespace qmp::os {

// `input_output` is what EIO means to the caller: read_fault, write_fault or io_device_failure.
ErrorCode code_of_errno(int number, ErrorCode input_output = io_device_failure);

}  // namespace qmp::os
