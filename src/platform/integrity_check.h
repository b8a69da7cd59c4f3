// Whether the program that measures is the program that was started.
//
// A benchmark's figures and a validation file mean something only when the program is the one that they
// name. The check takes the SHA-256 digest of the executable file when the program starts; the operation
// it yields takes it again later and compares. Reports print the digest, so that a changed program shows
// as another digest, and the outcome, so that a program replaced while it runs shows too.
#pragma once

#include <optional>
#include <string>

#include "platform/sha2.h"

namespace kelvara {

enum class IntegrityOutcome {
    unchecked,   // the operation has not run yet
    intact,      // both readings agree
    modified,    // they differ
    unreadable,  // the executable could not be read at one of the two times
};

// "Unchecked", "Intact", "Modified", "Unreadable".
const char* to_text(IntegrityOutcome outcome);

class IntegrityCheck {
  public:
    // Reads the executable at this path (UTF-8).
    explicit IntegrityCheck(std::string program_path);

    // The later reading. May be run again; the outcome is that of the last run, except that what was
    // once found modified stays modified.
    void operator()();

    IntegrityOutcome outcome() const { return outcome_; }
    // The digest at start as hexadecimal text; empty when the executable could not be read.
    std::string digest() const;

  private:
    std::string program_path_;
    std::optional<qmp::Sha256Digest> at_start_;
    IntegrityOutcome outcome_ = IntegrityOutcome::unchecked;
};

// The digest of a file's content, or nothing when it cannot be read to its end.
std::optional<qmp::Sha256Digest> digest_of_file(const std::string& path);

}  // namespace kelvara
