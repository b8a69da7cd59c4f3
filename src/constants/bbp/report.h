// What the digit extractor shows of a run.
#pragma once

#include <cstdint>
#include <string_view>

#include "constants/bbp/settings.h"

namespace kelvara::bbp {

// A whole run with its report.
void run_extraction(const Settings& settings);

// Before the run.
void print_task(const Settings& settings);
// The legend, and the digits in groups of 16, four to a line: the first `correct` ones green, the others red.
void print_digits(std::uint64_t offset, std::string_view digits, std::uint64_t correct);

}  // namespace kelvara::bbp
