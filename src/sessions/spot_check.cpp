#include "sessions/spot_check.h"

#include <algorithm>
#include <memory>

#include "config/text_file.h"
#include "console/console.h"
#include "console/format.h"
#include "digitfiles/open_digit_file.h"
#include "errors/exception.h"
#include "platform/os/file.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::uint64_t compared_digits = 10;

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

// The number that the text begins with, behind blanks; stops at the first character that is neither a digit
// nor a comma.
std::uint64_t take_number(std::string_view& text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    std::uint64_t value = 0;
    for (; !text.empty(); text.remove_prefix(1)) {
        const char c = text.front();
        if (c == ',') continue;
        if (c < '0' || c > '9') break;
        value = value * 10 + static_cast<std::uint64_t>(c - '0');
    }
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    return value;
}

}  // namespace

ReferenceDigits parse_reference_digits(std::string_view text) {
    ReferenceDigits entries;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::uint64_t position = take_number(line);
        if (line.empty() || line.front() != '|' || position < compared_digits) continue;
        line.remove_prefix(1);
        if (!entries.emplace(position, take_number(line)).second) {
            console::print_warning("Error parsing digit file: Duplicate entries.");
        }
    }
    return entries;
}

std::string SpotCheckResult::to_text() const {
    switch (kind) {
        case Kind::passed:
            return "Good through " + console::format_separated(position);
        case Kind::mismatch:
            return "Mismatch at " + console::format_separated(position);
        case Kind::no_entry:
            return "Unavailable - No suitable spot check entry.";
        default:
            return "Unavailable - Digit file not found.";
    }
}

std::string SpotCheckResult::to_file_text() const {
    return kind == Kind::passed || kind == Kind::mismatch ? to_text() : "Not Available";
}

SpotCheckResult spot_check(const ReferenceDigits& reference, qmp::DigitReader& reader, std::uint64_t digits) {
    SpotCheckResult result = SpotCheckResult::Kind::no_entry;
    try {
        for (const auto& [position, expected] : reference) {
            if (position > digits) break;
            char text[compared_digits];
            reader.read(position - compared_digits, text, compared_digits);
            std::string_view computed(text, compared_digits);
            result.position = position;
            if (take_number(computed) != expected || !computed.empty()) {
                result.kind = SpotCheckResult::Kind::mismatch;
                break;
            }
            result.kind = SpotCheckResult::Kind::passed;
        }
    } catch (const qmp::Exception& exception) {
        exception.print();
        return SpotCheckResult::Kind::no_entry;
    }
    return result;
}

std::string find_reference_file(const std::string& program_directory, std::string_view constant_name) {
    for (const char* folder : {"Binaries/Digits/", "Digits/", "../../Digits/", "../../../Digits/"}) {
        std::string path = program_directory + folder;
        path.append(constant_name).append(".txt");
        std::uint64_t bytes;
        if (qmp::os::file_size(path, bytes) == qmp::os::no_error) return path;
    }
    return {};
}

SpotCheckResult spot_check_file(const std::string& program_directory, std::string_view constant_name,
                                const std::string& digit_file, std::uint64_t digits) {
    const std::string reference_file = find_reference_file(program_directory, constant_name);
    if (reference_file.empty()) return SpotCheckResult::Kind::no_file;
    if (digit_file.empty()) return SpotCheckResult::Kind::no_entry;
    try {
        const ReferenceDigits reference = parse_reference_digits(qmp::read_text_file(reference_file).text);
        const std::unique_ptr<qmp::DigitReader> reader = qmp::OpenDigitFile(digit_file, false, 0);
        return spot_check(reference, *reader, digits);
    } catch (const qmp::Exception& exception) {
        exception.print();
        return SpotCheckResult::Kind::no_entry;
    }
}

void print_spot_check(const SpotCheckResult& result) {
    console::Colour colour = 'Y';
    if (result.kind == SpotCheckResult::Kind::passed) colour = 'G';
    if (result.kind == SpotCheckResult::Kind::mismatch) colour = 'R';
    console::print_label_line("Spot Check", result.to_text(), colour);
}

}  // namespace kelvara
