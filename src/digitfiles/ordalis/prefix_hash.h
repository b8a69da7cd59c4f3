// The check hash of a constant's first digits: Floor(x 10^digits) mod (2^61 - 1), the number by which results
// are compared.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "digitfiles/digit_reader.h"
#include "digitfiles/ordalis/count.h"

namespace Ordalis {

// Horner's rule, h = 10 h + digit, where a value x is folded to (x mod 2^61) + floor(x / 2^61). Folding makes
// no 0 of any other number, so a multiple of 2^61 - 1 shows as 2^61 - 1, unless it is 0 itself.
class PrefixHash {
  public:
    // Decimal digit values, most significant first.
    void append(std::span<const char> values);
    std::uint64_t value() const;

  private:
    std::uint64_t residue_ = 0;
    bool is_zero_ = true;  // the number itself
    std::vector<std::uint64_t> words_;
};

// Asks for the last digit and prints the hash. `path` is for messages.
void run_hash(qmp::DigitReader& reader, const std::string& path);

// Prints the hash after every `digits_per_line` of the digits [0, end) and after the last: "2 :\t314".
// FileException ("ComputeHash()") when the first digits are no number with a point.
void hash_prefix(qmp::DigitReader& reader, std::uint64_t end, const std::string& path,
                 std::uint64_t line_digits = digits_per_line);

}  // namespace Ordalis
