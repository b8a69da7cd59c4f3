// Text files in the encodings that editors save.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qmp {

struct DecodedText {
    // UTF-8, without the byte-order mark.
    std::string text;
    // "UTF-8", "UTF-16 (Little Endian)" or "UTF-16 (Big Endian)".
    std::string_view format;
};

// A byte-order mark FF FE or FE FF announces UTF-16; anything else is UTF-8, with or without EF BB BF.
// UTF-8 is taken byte for byte, malformed or not. In UTF-16 an unpaired surrogate becomes U+FFFD, and so
// does a byte without its other half at the end.
DecodedText decode_text(std::string bytes);

// Settings and reports are small: what does not end (a device, a pipe) must not take the machine's memory.
constexpr std::uint64_t largest_text_file = std::uint64_t{1} << 28;

// The whole file, as it is and decoded. FileException "Unable to open file." or "Unable to read file.", with
// the path and the system's code; for one of more than `largest_text_file` bytes the latter, with the code
// file_too_large.
std::string read_file_bytes(const std::string& path);
DecodedText read_text_file(const std::string& path);

}  // namespace qmp
