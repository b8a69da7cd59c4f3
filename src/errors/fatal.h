// The ends from which nothing recovers, and the guard of every thread that the program creates.
#pragma once

#include <string_view>

namespace qmp {

// Prints the failed condition, its location and a detail (empty texts are left out), waits for a key,
// and then reads from address 0 on purpose: the crash handler writes a dump, and a debugger stops at the
// failing check.
[[noreturn]] void assertion_failure(std::string_view condition, std::string_view location,
                                    std::string_view detail);

// The arithmetic's check of its own arguments: "Invalid Function Parameters:" with the function's name.
[[noreturn]] void invalid_function_parameters(std::string_view function);

// Call in a catch clause: prints what the exception being handled says of itself. An exception of the
// program prints its block, a standard exception and a thrown plain text their message as a warning;
// anything else has nothing to say.
void print_current_exception();

// Call before the last words of the program. The first thread to do so goes on; every other one stops here,
// so that threads that fail together do not print into one another's reports.
void claim_last_words();

// Call in a catch (...) clause on a thread of the program's own: prints the current exception and
// "FATAL ERROR: Unhandled exception in child thread.", and ends the program with exit code 1.
[[noreturn]] void end_after_child_thread_exception();

}  // namespace qmp
