// Keyboard input. Each reader sets the colour while the user types and white afterwards, unless the
// colour is ' '. A prompt that repeats until an answer is in range ends the program with a clear message
// when standard input has ended: it never spins.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "console/console.h"

namespace qmp::console {

// One line without its ending, or nothing at the end of input.
std::optional<std::string> read_line_or_end(Colour colour = ' ');
// One line; ends the program with a message when there is no more input.
std::string read_line(Colour colour = ' ');
std::string read_labelled_line(std::string_view label, Colour colour = ' ');

std::int64_t read_int(Colour colour = ' ');
std::int64_t read_int_in_range(std::string_view prompt, std::int64_t low, std::int64_t high, Colour colour = ' ');
std::uint64_t read_digit_count_in_range(std::string_view prompt, std::uint64_t low, std::uint64_t high,
                                        Colour colour = ' ');
std::uint64_t read_bytes(Colour colour = ' ');

// The screen shown wherever a number of digits is asked for, and its answer between the bounds.
std::uint64_t ask_digit_count(std::string_view prompt, std::uint64_t low, std::uint64_t high);

constexpr std::uint64_t largest_memory_cap = 0x6ffffffffffffff9;
// The memory-limit screen and its answer, at most largest_memory_cap.
std::uint64_t ask_memory_cap();

}  // namespace qmp::console
