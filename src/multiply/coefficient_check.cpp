#include "multiply/coefficient_check.h"

#include <xmmintrin.h>

#include "console/console.h"
#include "errors/convolution_exceptions.h"

namespace qmp {
namespace {

// All control bits; the six flags below them are set by ordinary arithmetic.
constexpr std::uint32_t vector_control_mask = 0xffc0;
constexpr std::uint32_t vector_control_default = 0x1f80;

constexpr std::uint16_t x87_rounding_mask = 0x0c00;
constexpr std::uint16_t x87_precision_mask = 0x0300;
constexpr std::uint16_t x87_53_bits = 0x0200;
constexpr std::uint16_t x87_64_bits = 0x0300;

}  // namespace

bool floating_point_state_is_default() {
    std::uint16_t x87 = 0;
    asm volatile("fnstcw %0" : "=m"(x87));
    const std::uint16_t precision = x87 & x87_precision_mask;
    return (_mm_getcsr() & vector_control_mask) == vector_control_default && (x87 & x87_rounding_mask) == 0 &&
           (precision == x87_53_bits || precision == x87_64_bits);
}

void check_coefficients(const char* function, std::uint64_t limit, std::uint64_t found) {
    if (found < limit) return;
    if (!floating_point_state_is_default()) {
        console::print_warning("The FPU Control Word has been corrupted.");
    }
    throw ConvolutionFailedException(function, "Coefficient is too large.", limit, found);
}

}  // namespace qmp
