// Opens a digit file with the reader of its kind.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "digitfiles/digit_reader.h"

namespace qmp {

// The extension decides, upper and lower case being different: ".txt" is a text file, whose radix is
// detected; `buffer_size` (bytes) is for readers that decode. FileException ("OpenDigitFile()") for any
// other extension, for none, and for ".qcd": this build has no reader for compressed digit files yet.
std::unique_ptr<DigitReader> OpenDigitFile(const std::string& path, bool raw, std::uint64_t buffer_size);

}  // namespace qmp
