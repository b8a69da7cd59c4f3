// Readers of numbers and sizes, for command-line values and for typed answers.
//
// None of them reports an error: malformed text yields the value of its valid prefix, often 0. Values
// that do not fit 64 bits saturate at the largest value, so that a later range check can refuse them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qmp::console {

// Digits up to the first other character; empty gives 0.
std::uint64_t parse_decimal(std::string_view text);
// The same where all 64 bits may be asked for; nothing when the value does not fit.
std::optional<std::uint64_t> parse_decimal_that_fits(std::string_view text);
// Digits and a decimal suffix in either case: K thousand, M million, B billion, T trillion. A command
// line counts digits in decimal, so K means 1,000 here while the keyboard reader takes 1,024.
std::uint64_t parse_int_with_suffix(std::string_view text);
// The same with an optional leading '-', for options that take a signed value.
std::int64_t parse_signed_with_suffix(std::string_view text);
// Digits, an optional fraction, and a unit letter in either case: K 2^10 ... E 2^60. The fraction counts
// only with a unit, and is rounded up to a whole byte.
std::uint64_t parse_bytes(std::string_view text);
// An optional '-', then digits up to the first other character.
std::int64_t parse_signed(std::string_view text);
// The keyboard's digit counts: commas are skipped; case-sensitive suffixes m b t (decimal) and
// K M G T P E (binary).
std::int64_t parse_digit_count(std::string_view text);
// The same for answers that may need all 64 bits; nothing when the value is negative or does not fit.
std::optional<std::uint64_t> parse_unsigned_digit_count(std::string_view text);

}  // namespace qmp::console
