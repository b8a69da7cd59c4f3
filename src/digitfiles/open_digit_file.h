// Opens a digit file with the reader of its kind.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "digitfiles/digit_reader.h"

namespace qmp {

// The extension decides, upper and lower case being different: ".txt" is a text file, whose radix is
// detected; ".qcd" a compressed digit file, whose packed words are read through a buffer of `buffer_size`
// bytes. FileException ("OpenDigitFile()") for any other extension and for none.
std::unique_ptr<DigitReader> OpenDigitFile(const std::string& path, bool raw, std::uint64_t buffer_size);

}  // namespace qmp
