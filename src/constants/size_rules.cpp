#include "constants/size_rules.h"

#include "console/format.h"
#include "errors/exception.h"
#include "radix/digit_counts.h"

namespace kelvara {

using qmp::console::format_separated;

void check_digits(std::uint64_t digits, std::uint64_t largest) {
    if (digits < smallest_digits) {
        throw qmp::InvalidParametersException("", "Computation size must be at least " +
                                                      format_separated(smallest_digits) + " decimal digits.");
    }
    if (digits > largest) {
        throw qmp::InvalidParametersException(
            "", "Computation size cannot be larger than " + format_separated(largest) + " decimal digits.");
    }
}

std::uint64_t precision_for_digits(std::uint64_t digits) {
    return (qmp::dec_to_hex(digits) >> 4) + 2;
}

}  // namespace kelvara
