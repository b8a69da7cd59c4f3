// The unit of the bench: one product of 10^6 x 10^6 words by GMP (mpn_mul_n), on one thread.
#pragma once

namespace bench {

// Seconds, now. Measured before each run, since a shared machine is faster at one time than at another.
double measure_unit();

}  // namespace bench
