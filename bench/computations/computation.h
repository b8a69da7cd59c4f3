// One whole computation, run as the program runs it: a session from its reservation to its report, of which
// nothing is shown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "step_times.h"

namespace bench {

struct Computation {
    std::string constant;   // as make_constant takes it
    std::string algorithm;  // keyword
    std::uint64_t digits;
    std::uint64_t tasks;

    std::string name() const { return constant + " (" + algorithm + ")"; }
};

// Seconds and bytes.
struct Figures {
    double unit = 0;       // one U just before the run
    double seconds = 0;    // from "Begin Computation" to the digits written and verified
    double output = 0;     // of these, from the constant's value on: conversion, writing, verification
    double reserving = 0;  // before them
    double twiddles = 0;
    std::uint64_t reserved = 0;
    std::uint64_t used = 0;  // of the reserved block, at the peak
    std::uint64_t twiddle_bytes = 0;
    std::uint64_t resident = 0;  // of the process, at the peak
    StepTimes steps;

    double in_units() const { return seconds / unit; }
    double value_in_units() const { return (seconds - output) / unit; }
};

struct Prefix {
    std::uint64_t digits;
    std::string digest;
};

struct Result {
    std::uint64_t precision = 0;  // words
    std::uint64_t hash = 0;       // Floor(x 10^digits) mod (2^61 - 1), as the program verified and reports it
    std::string last_digits;
    std::string digest;            // SHA-256 of the digit file
    std::vector<Prefix> prefixes;  // the same of the file cut after fewer digits
    Figures median;                // the run with the median time in U
};

// Runs it `runs` times; nothing when it does not fit into the memory that is available. The digit file of the
// last run is read, also up to those of the ascending digit counts that are smaller; every file is deleted.
// What the session throws.
std::optional<Result> run(const Computation& computation, std::uint64_t runs, const std::string& folder,
                          const std::vector<std::uint64_t>& digit_counts);

}  // namespace bench
