// The typed variants of console.h's labelled values: each formats its value (format.h) and prints it.
#pragma once

#include <cstdint>
#include <string_view>

#include "console/console.h"
#include "console/format.h"

namespace qmp::console {

// "label: value" lines.
void print_label_signed(std::string_view label, std::int64_t value, Colour colour = ' ');
void print_label_signed_separated(std::string_view label, std::int64_t value, Colour colour = ' ');
void print_label_separated(std::string_view label, std::uint64_t value, Colour colour = ' ');
void print_label_bytes(std::string_view label, std::uint64_t bytes, Colour colour = ' ');
void print_label_separated_bytes(std::string_view label, std::uint64_t bytes, Colour colour = ' ');
void print_label_fixed(std::string_view label, double value, int decimals, Colour colour = ' ');
void print_label_time(std::string_view label, double seconds, Colour colour = ' ');

// The same with the label padded to a column.
void print_column_signed(std::uint64_t column, std::string_view label, std::int64_t value, Colour colour = ' ');
void print_column_signed_separated(std::uint64_t column, std::string_view label, std::int64_t value,
                                   Colour colour = ' ');
void print_column_separated(std::uint64_t column, std::string_view label, std::uint64_t value,
                            Colour colour = ' ');
void print_column_bytes(std::uint64_t column, std::string_view label, std::uint64_t bytes, Colour colour = ' ');
void print_column_separated_bytes(std::uint64_t column, std::string_view label, std::uint64_t bytes,
                                  Colour colour = ' ');
void print_column_fixed(std::uint64_t column, std::string_view label, double value, int decimals,
                        Colour colour = ' ');
void print_column_time(std::uint64_t column, std::string_view label, double seconds, Colour colour = ' ');

}  // namespace qmp::console
