// A constant as the command line names it: its key, and its argument after a colon.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "constants/constant.h"

namespace bench {

// "pi", "log:10". qmp::InvalidParametersException for a constant that does not exist, and for an argument
// that it refuses.
std::unique_ptr<kelvara::Constant> make_constant(const std::string& name);

// The keywords of its algorithms.
std::vector<std::string> algorithms_of(const std::string& name);

// One of each constant, those with an argument with the smallest one that makes sense.
std::vector<std::string> every_constant();

}  // namespace bench
