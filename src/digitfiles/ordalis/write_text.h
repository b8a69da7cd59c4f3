// Decompresses digits into a text file.
#pragma once

#include <cstdint>
#include <string>

#include "digitfiles/digit_reader.h"

namespace Ordalis {

// Asks for a range and a file, and writes it.
void run_write_text(qmp::DigitReader& reader);

// Writes the digits [start, end). The integer part and the point stand before them when they are a result's
// first; a file without these cannot be read as a digit file again.
void write_text(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t end, const std::string& path);

}  // namespace Ordalis
