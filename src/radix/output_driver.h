// From a computed number to its digits: the output stage of a session.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "numbers/compute_context.h"
#include "radix/digit_sink.h"

namespace qmp {

// What the digits that were written look like.
struct DigitOutput {
    std::uint64_t digits = 0;                // fractional digits written
    std::uint64_t hash = 0;                  // Floor(x radix^digits) mod (2^61 - 1)
    std::string last_digits;                 // the last (at most 100) of them, as characters
    std::array<std::uint64_t, 16> counts{};  // how often each digit occurs among them
};

// Opens the place where the digits go, once the integer part is known ("3."); called when the first digits
// are about to be written. The sink has all digits before the driver verifies them, and is finished (flushed,
// closed) and destroyed afterwards, so that what has to reach a disk has the time of the verification for it.
using OpenSink = std::function<std::unique_ptr<DigitSink>(const std::string& first_digits)>;

// Converts x (0 <= x < 2^64) to decimal, writes `digits` fractional digits and verifies the conversion with
// the hash of both radices. Steps: "Base Converting:", "Writing Decimal Digits:   ",
// "Verifying Base Conversion...". Fatal when the verification fails twice, or x is out of range.
DigitOutput write_decimal(const ComputeContext& context, BigFloatView x, std::uint64_t digits,
                          const OpenSink& open);

// Writes `digits` hexadecimal digits straight from the words. Step: "Writing Hexadecimal Digits:".
DigitOutput write_hexadecimal(const ComputeContext& context, BigFloatView x, std::uint64_t digits,
                              const OpenSink& open);

// Upper bound of what write_decimal takes from the region, in bytes, and its largest product in words.
std::uint64_t decimal_output_bytes(std::uint64_t digits, std::uint64_t tasks);
std::uint64_t decimal_output_largest_product(std::uint64_t digits);
// The same for write_hexadecimal, which forms no product.
std::uint64_t hexadecimal_output_bytes(std::uint64_t digits, std::uint64_t tasks);

}  // namespace qmp
