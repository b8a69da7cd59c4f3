// Whether an interrupted computation waits to be resumed.
#pragma once

#include "platform/integrity_check.h"

namespace kelvara {

// Goes on with the computation of the checkpoint file in the current directory, and returns true. False
// without the file; so is the return after a warning where the file cannot be opened. A file that cannot be
// used is a fatal error. The file is left as it is, whatever happens.
bool resume_interrupted_computation(IntegrityCheck& integrity_check);

}  // namespace kelvara
