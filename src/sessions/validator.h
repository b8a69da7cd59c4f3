// The benchmark validator: tells whether a validation file is the one that this program wrote.
#pragma once

#include <string>
#include <string_view>

#include "sessions/validation_seal.h"

namespace kelvara {

enum class ValidationOutcome {
    passed,
    invalid_file,         // the marker or the seal is missing
    invalid_hash,         // the seal is not that of the content
    invalid_structure,    // something else stands where the format has its lines
    unsupported_version,  // 1.0 and 1.1
    newer_version,
};

struct ValidationResult {
    ValidationResult(ValidationOutcome how) : outcome(how) {}

    ValidationOutcome outcome;
    std::string format;  // "1.2" or "1.3" when the file was checked
    // The file's own texts, when it passed.
    std::string computation_time;
    std::string wall_time;
};

// `text` is the file without its byte-order mark, whichever encoding it came in.
ValidationResult validate(std::string_view text, const ValidationSealer& sealer);

// Everything that is shown of a result, from "Validation Format" on.
void print_validation(const ValidationResult& result);

// Reads the file (".txt" is added to a path without it) and prints its encoding and what comes of it. A file
// that cannot be read is reported.
void validate_file(std::string path, const ValidationSealer& sealer);

// The screen: asks for the path.
void run_validator();

}  // namespace kelvara
