// The two keyed digests at the end of a validation file.
//
// Both cover the content from the byte-order mark through the marker "----". A format derives a key for each
// digest from the build's secret; since version 1.3 the digest of the program's executable is mixed into it.
// So a file verifies in the executable that wrote it and in no other: neither another build's, nor another
// system's, nor one that was changed on the disk.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kelvara {

enum class ValidationFormat { version_1_2, version_1_3 };

struct ValidationSeal {
    std::string checksum0;  // keyed SHA-256, 64 lower-case hexadecimal digits
    std::string checksum1;  // keyed SHA-512, 128 of them

    friend bool operator==(const ValidationSeal&, const ValidationSeal&) = default;
};

// Makes the seals of one build's one executable.
class ValidationSealer {
  public:
    // The executable's digest as IntegrityCheck tells it.
    ValidationSealer(std::span<const std::uint8_t> secret, std::string_view program_digest);
    // Of the program that runs.
    static ValidationSealer of_this_program();

    ValidationSeal seal(ValidationFormat format, std::string_view content) const;

  private:
    std::string secret_;
    std::string program_digest_;
};

}  // namespace kelvara
