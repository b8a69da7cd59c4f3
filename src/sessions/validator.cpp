#include "sessions/validator.h"

#include <optional>

#include "config/text_file.h"
#include "console/console.h"
#include "console/input.h"
#include "errors/file_exception.h"
#include "sessions/validation_file.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::string_view line_ends = "\r\n";
constexpr std::string_view blanks = " \t";
constexpr std::string_view white_space = " \t\r\n";

std::string_view trimmed(std::string_view text, std::string_view characters) {
    const std::size_t first = text.find_first_not_of(characters);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(characters) - first + 1);
}

// What follows a label at the beginning of a line.
std::optional<std::string> line_value(std::string_view text, std::string_view label) {
    for (std::size_t place = text.find(label); place != std::string_view::npos;
         place = text.find(label, place + 1)) {
        if (place > 0 && text[place - 1] != '\n') continue;
        std::string_view value = text.substr(place + label.size());
        value = value.substr(0, value.find_first_of(line_ends));
        return std::string(trimmed(value, blanks));
    }
    return std::nullopt;
}

// The line that the text begins with, taken from it.
std::string_view take_line(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find_first_of(line_ends));
    text.remove_prefix(line.size());
    text = text.substr(std::min(text.find_first_not_of(line_ends), text.size()));
    return line;
}

// The seal below the marker. Nothing when anything else stands there: what is not sealed must not look as
// if it belonged to the file.
std::optional<ValidationSeal> read_seal(std::string_view trailer) {
    trailer = trimmed(trailer, white_space);
    const std::string_view first = take_line(trailer);
    const std::string_view second = take_line(trailer);
    if (!trailer.empty() || !first.starts_with(checksum0_label) || !second.starts_with(checksum1_label)) {
        return std::nullopt;
    }
    return ValidationSeal{std::string(first.substr(checksum0_label.size())),
                          std::string(second.substr(checksum1_label.size()))};
}

ValidationResult check(std::string_view text, ValidationFormat format, const ValidationSealer& sealer) {
    // The last one: a text of the system's may hold the same characters.
    const std::size_t marker = text.rfind(validation_marker);
    if (marker == std::string_view::npos || text.find(checksum0_label) == std::string_view::npos ||
        text.find(checksum1_label) == std::string_view::npos) {
        return ValidationOutcome::invalid_file;
    }
    const std::string_view content = text.substr(0, marker + validation_marker.size());
    const std::optional<ValidationSeal> seal = read_seal(text.substr(content.size()));
    if (!seal) return ValidationOutcome::invalid_structure;
    if (*seal != sealer.seal(format, std::string(byte_order_mark).append(content))) {
        return ValidationOutcome::invalid_hash;
    }
    const std::optional<std::string> computation_time = line_value(content, computation_time_label);
    const std::optional<std::string> wall_time = line_value(content, wall_time_label);
    if (!computation_time || !wall_time) return ValidationOutcome::invalid_structure;
    ValidationResult result = ValidationOutcome::passed;
    result.computation_time = *computation_time;
    result.wall_time = *wall_time;
    return result;
}

// A warning that goes on in a second line.
void print_version_warning(std::string_view first, std::string_view second) {
    console::print_warning(first, true);
    console::println(second);
}

}  // namespace

ValidationResult validate(std::string_view text, const ValidationSealer& sealer) {
    const std::optional<std::string> version = line_value(text, validation_version_label);
    if (!version) return ValidationOutcome::invalid_structure;
    if (*version == "1.0" || *version == "1.1") return ValidationOutcome::unsupported_version;
    if (*version != "1.2" && *version != "1.3") return ValidationOutcome::newer_version;
    ValidationResult result = check(
        text, *version == "1.2" ? ValidationFormat::version_1_2 : ValidationFormat::version_1_3, sealer);
    result.format = *version;
    return result;
}

void print_validation(const ValidationResult& result) {
    if (!result.format.empty()) console::println("Validation Format " + result.format + "\n");
    switch (result.outcome) {
        case ValidationOutcome::passed:
            console::println("Validation Passed!", 'G');
            console::reset_color();
            console::print_column_line(console::default_column, "Computation Time:", result.computation_time,
                                       'Y');
            console::print_column_line(console::default_column, "Total Time:", result.wall_time, 'Y');
            break;
        case ValidationOutcome::invalid_file:
            console::print_warning("Validation Failed - Invalid File");
            break;
        case ValidationOutcome::invalid_hash:
            console::print_warning("Validation Failed: Invalid Hash");
            break;
        case ValidationOutcome::invalid_structure:
            console::print_warning("Validation Failed: File is either invalid or has been tampered with.");
            break;
        case ValidationOutcome::unsupported_version:
            print_version_warning("Validation file versions 1.0 an 1.1 are no longer supported.",
                                  "To validate this file, please use Kelvara v0.5.5.");
            break;
        case ValidationOutcome::newer_version:
            print_version_warning("This validation file version is too new.",
                                  "Please use a newer version of Kelvara.");
            break;
    }
    console::reset_color();
}

void validate_file(std::string path, const ValidationSealer& sealer) {
    if (!path.ends_with(".txt")) path += ".txt";
    qmp::DecodedText file;
    try {
        file = qmp::read_text_file(path);
    } catch (const qmp::FileIO::FileException& exception) {
        qmp::print_file_warning("Unable to open validation file: " + path, exception);
        return;
    }
    console::print_label_line("File Format", file.format, 'G');
    console::newline();
    print_validation(validate(file.text, sealer));
}

void run_validator() {
    console::println("Benchmark Validator", 'P');
    console::reset_color();
    console::newline();
    console::println("Enter Path of Validation File:");
    validate_file(console::read_line('T'), ValidationSealer::of_this_program());
}

}  // namespace kelvara
