// Where the time of one computation goes.
#pragma once

#include "tables.h"

namespace bench {

// By phase, and within a phase by what its labels say.
void print_phases(const Measured& measured);
// Division, inverse square root and final product in times of one product of p x p words.
void print_newton(const Measured& measured);
// The series by kind of work: leaves, merges by size, folds. For a computation on one task.
void print_series(const Measured& measured);

}  // namespace bench
