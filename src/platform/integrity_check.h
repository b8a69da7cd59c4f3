// Whether the program that measures is the program that was built, and still the one that was started.
//
// A benchmark's figures and a validation file mean something only when the program is the one that they
// name. The build seals the executable (integrity_seal.h). At start the check reads the executable, takes
// the SHA-256 digest of its content and compares it with the seal; the operation that the check yields reads
// it again later, which shows a program that was replaced while it runs. Reports print the digest, so that a
// changed program shows as another digest even where somebody sealed it again, and the outcome.
#pragma once

#include <optional>
#include <string>

#include "platform/sha2.h"

namespace kelvara {

enum class IntegrityOutcome {
    intact,     // the content is the one that was sealed
    modified,   // it is not, or it has changed since the start
    unsealed,   // there is no seal: the file was stripped, or cut, or linked without the build
    unreadable  // the executable could not be read
};

// "Intact", "Modified", "Unsealed", "Unreadable".
const char* to_text(IntegrityOutcome outcome);

class IntegrityCheck {
  public:
    // Reads the executable at this path (UTF-8).
    explicit IntegrityCheck(std::string program_path);

    // Reads it again. What was once found modified stays modified, and what was once unreadable cannot be
    // compared any more.
    void operator()();

    IntegrityOutcome outcome() const { return outcome_; }
    // The digest of the content at start, the seal left out, as hexadecimal text; empty when the executable
    // could not be read. One build has one digest.
    std::string digest() const;

  private:
    std::string program_path_;
    std::optional<qmp::Sha256Digest> at_start_;
    IntegrityOutcome outcome_ = IntegrityOutcome::unreadable;
};

// The digest of an executable's content and what its seal says of it: intact, modified or unsealed. Nothing
// when the file cannot be read to its end.
struct SealedContent {
    qmp::Sha256Digest digest;
    IntegrityOutcome outcome;
};
std::optional<SealedContent> read_sealed_content(const std::string& path);

// The seal that belongs to a content with this digest.
std::string seal_of(const qmp::Sha256Digest& content);

}  // namespace kelvara
