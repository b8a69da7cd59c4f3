// The table of codecs.
#pragma once

#include "options.h"

namespace bench {

void print_codecs(const Options& options);

}  // namespace bench
