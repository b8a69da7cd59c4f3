// What the program was built with, and when.
#pragma once

#include <string>
#include <string_view>

namespace kelvara {

std::string_view compiler_name();
std::string compiler_version();
// The day on which the program was compiled, as the compiler writes it: "Nov 20 2026". A build with
// SOURCE_DATE_EPOCH set carries that day, so that equal sources give equal programs.
std::string_view compile_date();

}  // namespace kelvara
