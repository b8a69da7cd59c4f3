#include "sessions/spot_check.h"

#include <memory>

#include "config/text_file.h"
#include "console/console.h"
#include "console/format.h"
#include "console/parse.h"
#include "digitfiles/open_digit_file.h"
#include "errors/exception.h"
#include "platform/os/file.h"

namespace kelvara {

namespace console = qmp::console;

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
            char text[reference_group];
            reader.read(position - reference_group, text, reference_group);
            const std::string_view computed(text, reference_group);
            result.position = position;
            if (computed.find_first_not_of("0123456789") != std::string_view::npos ||
                console::parse_decimal(computed) != expected) {
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
