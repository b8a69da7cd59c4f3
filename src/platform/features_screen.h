// The "Hardware Features" screen.
#pragma once

#include "platform/processor_features.h"

namespace qmp {

// One line a feature, "Yes" in bright green or "No" in bright red. A star marks the features that the
// program's builds make use of.
void print_features(const ProcessorFeatures& features);
// This processor's.
void print_features();

}  // namespace qmp
