// The process: its arguments, path, priority, streams and end.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qmp::os {

// Called first. A computation of days must survive the loss of whoever looks at its output: from now on
// writing to a pipe whose reader has gone, and to a file that has reached its allowed size, fails like any
// other write instead of ending the process. Standard streams that were closed at start lead nowhere, so
// that no file that is opened later takes their place and receives what is printed. How the process answers
// a hang-up of its terminal stays as its starter chose it.
void prepare_process();

// "Windows" or "Linux".
std::string_view system_name();
// What the implementations of this seam are built on: "WinAPI" or "Linux API".
std::string_view system_interface_name();

// The arguments as UTF-8, the program itself included. Usable before main.
std::vector<std::string> arguments();

// The full path of the executable as UTF-8, or nothing when the system does not tell it.
std::optional<std::string> program_path();

// Lets every other program go first. A refusal is ignored.
void lower_process_priority();

bool debugger_present();

// Ends the process at once: streams are flushed, nothing is destroyed, other threads are not waited for.
[[noreturn]] void exit_process(int exit_code);

// The system's own text for one of its error codes, without a line end, in `buffer`. Allocates nothing.
std::string_view system_error_text(std::uint32_t code, std::span<char> buffer);
std::string system_error_text(std::uint32_t code);

}  // namespace qmp::os
