// The spot check: digits read back from a digit file that was just written against known digits.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "digitfiles/digit_reader.h"
#include "sessions/reference_digits.h"

namespace kelvara {

struct SpotCheckResult {
    enum class Kind { passed, mismatch, no_file, no_entry };
    SpotCheckResult(Kind what = Kind::no_file, std::uint64_t where = 0) : kind(what), position(where) {}

    Kind kind;
    std::uint64_t position;  // of the last entry that agreed, or of the one that did not

    // As the screen shows it: "Good through 1,000", "Mismatch at 1,000", "Unavailable - ...".
    std::string to_text() const;
    // As the validation file has it: "Not Available" for all that is neither good nor bad.
    std::string to_file_text() const;
};

// Compares the entries up to the last of `digits` digits, in order, until one disagrees. An exception of the
// reader is printed and makes the check unavailable.
SpotCheckResult spot_check(const ReferenceDigits& reference, qmp::DigitReader& reader, std::uint64_t digits);

// The path of a constant's reference file ("Pi" for "Pi.txt"), in the first of the folders
// "Binaries/Digits/", "Digits/", "../../Digits/" and "../../../Digits/" below the program's that has it;
// empty when none has.
std::string find_reference_file(const std::string& program_directory, std::string_view constant_name);

// The whole check of the decimal digits in a file. An empty path stands for digits that are in no file, which
// nothing can be compared with.
SpotCheckResult spot_check_file(const std::string& program_directory, std::string_view constant_name,
                                const std::string& digit_file, std::uint64_t digits);

// "Spot Check: Good through 1,000"
void print_spot_check(const SpotCheckResult& result);

}  // namespace kelvara
