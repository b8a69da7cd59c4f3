// Numbers, sizes and times as text. Every function is pure and returns UTF-8 text.
#pragma once

#include <cstdint>
#include <string>

namespace qmp::console {

enum class IntegerStyle : int { plain = 0, separated = 1, bytes = 2, separated_bytes = 3 };

std::string format_int(std::uint64_t value, IntegerStyle style = IntegerStyle::plain);
std::string format_signed(std::int64_t value, IntegerStyle style = IntegerStyle::plain);
// 1,234,567
std::string format_separated(std::uint64_t value);
std::string format_signed_separated(std::int64_t value);
// Three significant digits and a binary unit: "1.50 KiB". One-digit byte counts carry a leading space,
// two- and three-digit ones none: the asymmetry is intended.
std::string format_bytes(std::uint64_t bytes);
// "1,048,576 (1.00 MiB)"
std::string format_separated_bytes(std::uint64_t bytes);
std::string format_fixed(double value, int decimals);
// "125.500 seconds  ( 2.092 minutes )": minutes below two hours, hours below two days, then days.
std::string format_time(double seconds);

}  // namespace qmp::console
