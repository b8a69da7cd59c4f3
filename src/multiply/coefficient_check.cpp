#include "multiply/coefficient_check.h"

#include <xmmintrin.h>

#include "console/console.h"
#include "errors/convolution_exceptions.h"

namespace qmp {
namespace {

// Rounding to nearest, no flushing of small numbers; vectors and the x87 unit.
bool default_control() {
    constexpr unsigned rounding_and_flushing = 0xe040;
    if ((_mm_getcsr() & rounding_and_flushing) != 0) return false;
    unsigned short control;
    __asm__("fnstcw %0" : "=m"(control));
    constexpr unsigned precision_and_rounding = 0x0f00, extended_to_nearest = 0x0300;
    return (control & precision_and_rounding) == extended_to_nearest;
}

}  // namespace

void check_coefficients(const char* function, std::uint64_t limit, std::uint64_t found) {
    if (found < limit) return;
    if (!default_control()) console::print_warning("The FPU Control Word has been corrupted.");
    throw ConvolutionFailedException(function, "Coefficient is too large.", limit, found);
}

}  // namespace qmp
