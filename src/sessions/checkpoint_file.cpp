#include "sessions/checkpoint_file.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "config/settings_record.h"
#include "config/text_cursor.h"
#include "errors/exception.h"
#include "platform/sha2.h"
#include "sessions/validation_key.h"

namespace kelvara {
namespace {

constexpr std::string_view head = "\xef\xbb\xbfKelvara Checkpoint File - DO NOT EDIT!!!\r\n";
constexpr std::string_view line_end = "\r\n";

// What stands in front of a section's identifier.
const std::string section_start = "\r\n" + std::string(79, '/') + "\r\n//  ";

void append_section(std::string& file, std::int32_t identifier, std::string_view text) {
    file.append(section_start).append(std::to_string(identifier)).append(line_end).append(text);
}

// A section in the text of a file: its identifier, and where its own text lies.
struct Section {
    std::optional<std::int32_t> identifier;  // nothing when it is no number
    std::size_t begin;
    std::size_t end;
};

// The section whose start stands at `start`.
Section section_at(std::string_view file, std::size_t start) {
    const std::size_t name = start + section_start.size();
    const std::size_t name_end = std::min(file.find(line_end, name), file.size());
    const std::size_t begin = std::min(name_end + line_end.size(), file.size());
    // An empty section's end is the line end in front of the next one.
    Section section{std::nullopt, begin, std::min(file.find(section_start, begin), file.size())};
    std::int32_t identifier = 0;
    const auto parsed = std::from_chars(file.data() + name, file.data() + name_end, identifier);
    if (parsed.ec == std::errc() && parsed.ptr == file.data() + name_end && name_end > name) {
        section.identifier = identifier;
    }
    return section;
}

template <typename Visit>
void for_each_section(std::string_view file, Visit visit) {
    for (std::size_t start = file.find(section_start); start < file.size();) {
        const Section section = section_at(file, start);
        visit(section);
        start = section.end;
    }
}

[[noreturn]] void fail(const char* message) {
    throw qmp::StringException("", message);
}

[[noreturn]] void fail_as_corrupted() {
    fail("Checksum Mismatch. Checkpoint file is corrupted.");
}

}  // namespace

CheckpointSealer CheckpointSealer::of_this_build() {
    return CheckpointSealer(validation_key());
}

std::string CheckpointSealer::seal(std::string_view file) const {
    // A key of its own, so that a seal of another kind of file is of no use here.
    qmp::KeyedDigest<qmp::Sha512> derivation(qmp::bytes_of(secret_));
    derivation.append(qmp::bytes_of("Kelvara checkpoint file"));
    qmp::KeyedDigest<qmp::Sha256> digest(derivation.finish());
    digest.append(qmp::bytes_of(file));
    return qmp::to_hexadecimal(digest.finish());
}

std::string checkpoint_text(const Checkpoint& checkpoint, const CheckpointSealer& sealer) {
    qmp::SettingsRecordWriter header;
    header.append_lines(line_end)
        .write_string("Program Version: ", checkpoint.program_version)
        .write_integer("Sequence Number: ", checkpoint.sequence_number)
        .append_lines(line_end)
        .append_lines("Hash: \t");
    std::string file(head);
    append_section(file, checkpoint_header_section, header.take());
    const std::size_t digest_place = file.size();
    file.append(line_end).append(line_end);
    for (const auto& [identifier, text] : checkpoint.sections) append_section(file, identifier, text);
    return file.insert(digest_place, sealer.seal(file));
}

Checkpoint parse_checkpoint(std::string_view file, std::string_view program_version,
                            const CheckpointSealer& sealer) {
    Checkpoint checkpoint;
    std::optional<std::string_view> header;
    for_each_section(file, [&](const Section& section) {
        const std::string_view text = file.substr(section.begin, section.end - section.begin);
        if (section.identifier == checkpoint_header_section) {
            if (!header) header = text;
        } else if (section.identifier) {
            checkpoint.sections.emplace(*section.identifier, text);
        }
    });
    if (!header) fail("Header not found.");
    try {
        qmp::TextCursor record(header->substr(std::min(line_end.size(), header->size())));
        checkpoint.program_version = record.read_string_field();
        if (checkpoint.program_version != program_version) {
            fail("Cannot resume computation. The version does not match.");
        }
        checkpoint.sequence_number = record.read_integer_field();
    } catch (const qmp::ParseException&) {
        fail_as_corrupted();
    }
    // Nothing may differ from what would be written, the digest included.
    if (checkpoint_text(checkpoint, sealer) != file) fail_as_corrupted();
    return checkpoint;
}

}  // namespace kelvara
