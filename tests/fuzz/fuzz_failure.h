// How a fuzz target says that something is wrong.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace kelvara_test {

[[noreturn]] inline void fuzz_failure(const char* what) {
    std::fprintf(stderr, "fuzz target: %s\n", what);
    std::abort();
}

}  // namespace kelvara_test
