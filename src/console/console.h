// Screen output of the whole program: coloured text, labelled values, pauses, the window size.
//
// Text is UTF-8 here. On a console it is drawn in colour (console_device.h of the system seam); output
// that is not a console receives the same text as plain UTF-8 bytes without colour, so nothing is lost
// in a file or a pipe. No operation throws. Operations take no lock of their own: callers that print
// from several threads serialise their own lines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qmp::console {

// A colour letter: 'B' 'G' 'T' 'R' 'P' 'Y' are bright blue, green, teal, red, purple and yellow, their
// lower-case letters the dark variants; ' ' keeps the current colour; any other letter ('w' by
// convention) is white.
using Colour = char;

// The console text attribute of a colour letter, or -1 for ' '.
int colour_attribute(Colour colour);

// Colours are skipped entirely while disabled; text is still written. They are enabled from the start
// unless the environment variable NO_COLOR holds something.
void enable_colours(bool enabled);
bool colours_enabled();

void set_color(Colour colour);
void reset_color();

// Each returns the number of UTF-16 units written. The colour stays in force after write and println.
std::uint64_t write(std::string_view text, Colour colour = ' ');
std::uint64_t println(std::string_view text, Colour colour = ' ');
// Appends a line break, writes, and leaves the caller's string empty.
std::uint64_t println_wide(std::u16string& text, Colour colour = ' ');
void newline();

// A line break, then the text in bright red on its own line; white afterwards unless keep_colour.
void print_warning(std::string_view text, bool keep_colour = false);

// "label: value"; the label is white and the colour is white again after the value, unless the colour
// is ' ', which changes no colour at all.
std::uint64_t print_label(std::string_view label, std::string_view value, Colour colour = ' ');
std::uint64_t print_label_line(std::string_view label, std::string_view value, Colour colour = ' ');

constexpr std::uint64_t default_column = 20;

// The label is padded, or cut, to `column` characters, the last of which is always a space.
std::uint64_t print_column(std::uint64_t column, std::string_view label, std::string_view value,
                           Colour colour = ' ');
std::uint64_t print_column_line(std::uint64_t column, std::string_view label, std::string_view value,
                                Colour colour = ' ');

// Right-aligned in `width` characters; a longer text is written whole.
std::uint64_t print_right(std::uint64_t width, std::string_view text, Colour colour = ' ');

void print_pass_fail(bool passed);
void print_yes_no(bool yes);

// Shows "Press any key to continue . . . " and waits for a key. Where nobody can press one or nobody sees
// the prompt (input or output is not a console), it returns at once and prints nothing.
void pause(Colour colour = 'w');
// White, a pause, and the end of the process.
[[noreturn]] void terminate(int exit_code);
// The text in bright red between empty lines, a pause, and exit code 1.
[[noreturn]] void fatal_error(std::string_view text);

// False when there is no console, it refuses, or the size is no size.
bool set_window_size(int width, int height);

// One count per write and per pause.
std::uint64_t output_counter();

// True when standard output is a console on which a line can be rewritten.
bool can_rewrite_lines();

// The columns of the console's window; 80 where there is none.
std::uint64_t window_columns();
// The characters of a text, which are the columns that it takes on a line.
std::uint64_t count_characters(std::string_view text);

}  // namespace qmp::console
