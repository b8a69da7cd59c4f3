// The general libraries that offer a constant: MPFR, and Arb of Debian.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// "arb", "mpfr".
const std::vector<std::string>& rival_libraries();

// A table of the libraries' times for each constant that they offer, in U measured just before: the binary
// value alone, computed once. Arb runs on so many threads, MPFR on one.
void print_rivals(const std::vector<std::string>& libraries, const std::vector<std::string>& constants,
                  const std::vector<std::uint64_t>& digits, std::uint64_t threads);

}  // namespace bench
