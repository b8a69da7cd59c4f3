// The checkpoint file: what is needed to go on with a computation that was interrupted, as a text of
// sections.
//
// UTF-8 with a byte-order mark, lines end with CR LF. A section begins with an empty line, a line of 79 '/',
// and a comment that holds its identifier; the sections stand in the order of their identifiers. The first is
// the header: program version, sequence number, and a keyed SHA-256 digest of the whole file with nothing in
// the digest's place.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace kelvara {

// In the current directory.
inline constexpr std::string_view checkpoint_file_name = "Kelvara Checkpoint File.txt";

// Identifiers of sections. Those from 0 on are the open frames of the computation, by depth.
inline constexpr std::int32_t checkpoint_header_section = -3;
inline constexpr std::int32_t checkpoint_settings_section = -2;
inline constexpr std::int32_t checkpoint_start_section = -1;
inline constexpr std::int32_t checkpoint_event_log_section = std::numeric_limits<std::int32_t>::max();

struct Checkpoint {
    std::string program_version;
    std::int64_t sequence_number = 0;              // of the commit
    std::map<std::int32_t, std::string> sections;  // all but the header
};

// Seals the checkpoint files of one build.
class CheckpointSealer {
  public:
    explicit CheckpointSealer(std::span<const std::uint8_t> secret) : secret_(secret.begin(), secret.end()) {}
    static CheckpointSealer of_this_build();

    // Of a file with an empty digest, 64 lower-case hexadecimal digits.
    std::string seal(std::string_view file) const;

  private:
    std::string secret_;
};

// The bytes of the file. A section's text must not hold the lines that begin a section.
std::string checkpoint_text(const Checkpoint& checkpoint, const CheckpointSealer& sealer);

// The checkpoint in a file's bytes. A StringException says what is wrong, in this order: "Header not found.",
// "Cannot resume computation. The version does not match." when it is another program's, and "Checksum
// Mismatch. Checkpoint file is corrupted." for a header that cannot be read and for any change.
Checkpoint parse_checkpoint(std::string_view file, std::string_view program_version,
                            const CheckpointSealer& sealer);

}  // namespace kelvara
