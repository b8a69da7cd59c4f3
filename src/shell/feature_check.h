// Whether this machine has what the build's identity asks for.
#pragma once

#include "platform/build_identity.h"

namespace kelvara {

// Prints the required features and, when one is missing, a warning, and waits for a key unless warnings
// are skipped. It never stops the program.
void check_processor_features();
void check_processor_features(const BuildIdentity& identity, const qmp::ProcessorFeatures& features);

}  // namespace kelvara
