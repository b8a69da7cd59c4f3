// Compresses the digits of a text file.
#pragma once

#include <cstdint>
#include <string>

#include "digitfiles/digit_reader.h"

namespace Ordalis {

// Of digits that nobody gave a name.
constexpr const char* default_name = "Name";

// Where the digits go, and in what pieces.
struct CompressedOutput {
    std::string folder;
    std::string name;
    std::uint64_t digits_per_file;  // qmp::unlimited_digits_per_file: a single file
};

// Asks for the number of digits and the files, and writes them.
void run_write_compressed(qmp::DigitReader& reader);

// Writes the digits [start, end) into files that begin with number `first_file`.
void write_compressed(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t end,
                      const CompressedOutput& output, std::uint64_t first_file);

}  // namespace Ordalis
