// Two Machin-like formulas for the logarithm of a number: found, proved, and kept.
//
// Main thread: it prints, and keeps what it has generated for the whole process.
#pragma once

#include <cstdint>

#include "constants/log_formula.h"

namespace kelvara {

// What forbids to use a formula of ln n that a search found at this cost: "Unable to derive formula." when it
// found none, "Unable to verify correctness of formula."; null for nothing.
const char* log_formula_failure(const LogFormula& formula, std::uint64_t n, double cost);

// Two formulas of ln n for a precision of X natural units. Prints what it does and how long that takes,
// unless they have been generated before: then they are those of then, whatever X is. Null on success,
// otherwise what went wrong: "Unable to derive formula." or "Unable to verify correctness of formula.". n = 0
// ends the program.
const char* generate_log_formulas(LogFormulas& out, std::uint64_t n, double X);

// The same; prints "Error" and the text and ends the program ("Please report this as a bug.") when it fails.
LogFormulas log_formulas(std::uint64_t n, double X);

// The screen "Log(n)": asks for n and a size, and prints both formulas.
void run_log_formula_screen();

}  // namespace kelvara
