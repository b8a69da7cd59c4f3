// The console as a device: its two streams, its text attribute, its window and its keyboard.
//
// Text goes to a console as UTF-16 and to anything else as bytes; callers ask first which of the two they
// have. No operation throws and none allocates on the way out, so that a crash handler can still print.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qmp::os {

// True when the stream is a console that a person looks at or types on, not a file, a pipe or the null
// device. Asked anew on every call: streams can be redirected while the program runs.
bool output_is_console();
bool input_is_console();

// True when standard output is a console on which what was written can be written over. A terminal that
// calls itself "dumb" only ever appends.
bool console_rewrites_lines();

// True when the console window was opened for this process: the cursor still stands at column 0, row 0.
// False when that cannot be found out.
bool console_is_fresh();

// The low four bits are the foreground (1 blue, 2 green, 4 red, 8 bright), the next four the background;
// 7 is what the console shows by default.
void set_text_attribute(int attribute);

// From now on a process that is interrupted (Ctrl-C) or asked to end leaves its console as it found it: in
// the default colour, and with lines and echo switched on. It ends as it would have ended otherwise.
void restore_console_when_interrupted();

// Writes to a console. The text does not split a surrogate pair.
void write_console(std::u16string_view text);
// Writes to standard output when it is not a console.
void write_bytes(std::string_view bytes);

constexpr std::size_t largest_read = 256;

// At most largest_read UTF-16 units of typed text, never beyond the end of a line, with the line ending
// as typed; nothing at the end of input. The input is a console.
std::optional<std::u16string> read_console();
// The same in bytes, for an input that is not a console. A character may be cut at the end of a chunk.
std::optional<std::string> read_bytes();

// Waits for one key, without echo. False when there was none to wait for.
bool wait_for_key();

struct WindowSize {
    int columns = 0;
    int rows = 0;
};

// The window as it is; zeros without a console.
WindowSize window_size();
// The largest window that the console could show; zeros when it has none.
WindowSize largest_window_size();
// Makes the window reach from column 0, row 0 to the given column and row.
bool set_window_rectangle(int right, int bottom);

}  // namespace qmp::os
