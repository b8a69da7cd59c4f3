// The settings of a computation as the object "CustomCompute" of a configuration file.
//
// Keys, in the order in which they are written: "Constant", "ComputeSize", "Output", "Mode", "Parallelism",
// "Allocator". The size knows hexadecimal output only as on (the equivalent count) or off.
#pragma once

#include "config/notation.h"
#include "sessions/ram_settings.h"

namespace kelvara {

qmp::notation::Object write_settings(const RamSettings& settings);

// New settings. Throws for the first key that is missing, of another type or refused; sizes outside the
// limits are brought into them with a warning, and so are digits per file too few for compression.
RamSettings read_settings(const qmp::notation::Object& object);

}  // namespace kelvara
