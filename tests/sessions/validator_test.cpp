#include "sessions/validator.h"

#include <gtest/gtest.h>

#include <fstream>

#include "config/text_file.h"
#include "platform/os/unicode.h"
#include "sessions/validation_example.h"
#include "support/console.h"
#include "support/folder.h"

namespace kelvara {
namespace {

using kelvara_test::example_record;
using kelvara_test::printed_by;
using kelvara_test::sealed_file;
using kelvara_test::test_sealer;

ValidationResult validate_bytes(const std::string& bytes) {
    return validate(qmp::decode_text(bytes).text, test_sealer());
}

// A record with as little text as there can be.
std::string small_file() {
    return sealed_file(ValidationRecord{});
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return text.replace(place, from.size(), to);
}

// The example with another version number, sealed anew as that version.
std::string of_version_1_2() {
    const std::string content = replaced(validation_content(example_record()), "1.3\r\n", "1.2\r\n");
    return content + validation_trailer(test_sealer().seal(ValidationFormat::version_1_2, content));
}

TEST(Validator, PassesWhatTheProgramWrote) {
    const ValidationResult result = validate_bytes(sealed_file(example_record()));
    EXPECT_EQ(result.outcome, ValidationOutcome::passed);
    EXPECT_EQ(result.format, "1.3");
    EXPECT_EQ(result.computation_time, "1.250 seconds");
    EXPECT_EQ(result.wall_time, "2.062 seconds");
    EXPECT_EQ(validate_bytes(small_file()).outcome, ValidationOutcome::passed);
}

TEST(Validator, KnowsTheOlderFormat) {
    const ValidationResult result = validate_bytes(of_version_1_2());
    EXPECT_EQ(result.outcome, ValidationOutcome::passed);
    EXPECT_EQ(result.format, "1.2");
    EXPECT_EQ(result.computation_time, "1.250 seconds");
}

TEST(Validator, EveryChangedByteAboveTheMarkerIsSeen) {
    const std::string file = small_file();
    const std::size_t end = file.find(validation_marker) + validation_marker.size();
    const std::size_t version = file.find(validation_version_label);
    const std::size_t version_end = file.find('\r', version);
    for (std::size_t place = 0; place < end; ++place) {
        for (const int change : {0x01, 0x20, 0x80, 0xff}) {
            std::string changed = file;
            changed[place] = static_cast<char>(changed[place] ^ change);
            const ValidationOutcome outcome = validate_bytes(changed).outcome;
            EXPECT_NE(outcome, ValidationOutcome::passed) << place << " ^ " << change;
            // The version's line decides how the file is read at all, and the marker where the content ends.
            const bool structural =
                (place + 1 >= version && place <= version_end) || place >= end - validation_marker.size();
            if (!structural) {
                EXPECT_EQ(outcome, ValidationOutcome::invalid_hash) << place << " ^ " << change;
            }
        }
    }
}

TEST(Validator, EveryChangedByteBelowTheMarkerIsSeen) {
    const std::string file = small_file();
    const std::size_t trailer = file.find("Checksum0");
    for (std::size_t place = trailer; place < file.size() - 2; ++place) {
        std::string changed = file;
        changed[place] = static_cast<char>(changed[place] ^ 0x04);
        EXPECT_NE(validate_bytes(changed).outcome, ValidationOutcome::passed) << place;
    }
}

TEST(Validator, CutFilesNeverPass) {
    const std::string file = sealed_file(example_record());
    const std::size_t marker = file.find(validation_marker);
    // The line end of the last line is all that can be missing.
    for (std::size_t size = 0; size + 2 < file.size(); ++size) {
        const ValidationResult result = validate_bytes(file.substr(0, size));
        EXPECT_NE(result.outcome, ValidationOutcome::passed) << size;
        if (size > marker && size < file.find("Checksum1: ")) {
            EXPECT_EQ(result.outcome, ValidationOutcome::invalid_file) << size;
        }
    }
    EXPECT_EQ(validate_bytes(file.substr(0, file.size() - 2)).outcome, ValidationOutcome::passed);
    EXPECT_EQ(validate_bytes("").outcome, ValidationOutcome::invalid_structure);
    EXPECT_EQ(validate_bytes("Any text at all.\r\n").outcome, ValidationOutcome::invalid_structure);
}

TEST(Validator, LinesTakenOutOrPutInAreSeen) {
    const std::string file = sealed_file(example_record());
    for (std::size_t start = 0; start < file.size();) {
        const std::size_t end = file.find("\r\n", start) + 2;
        EXPECT_NE(validate_bytes(std::string(file).erase(start, end - start)).outcome,
                  ValidationOutcome::passed)
            << file.substr(start, end - start);
        start = end;
        // Empty lines between the marker and the seal's lines are nobody's.
        if (start > file.find(validation_marker)) break;
    }
    EXPECT_EQ(validate_bytes(replaced(file, "Event Log:", "An Event Log:")).outcome,
              ValidationOutcome::invalid_hash);
}

TEST(Validator, TheSealIsAllThatFollowsTheMarker) {
    const std::string file = sealed_file(example_record());
    const auto outcome = [](const std::string& bytes) { return validate_bytes(bytes).outcome; };
    EXPECT_EQ(outcome(file + "Total Computation Time:    0.001 seconds\r\n"),
              ValidationOutcome::invalid_structure);
    EXPECT_EQ(outcome(replaced(file, "Checksum0", "A note\r\nChecksum0")),
              ValidationOutcome::invalid_structure);
    EXPECT_EQ(outcome(replaced(file, "Checksum1", "A note\r\nChecksum1")),
              ValidationOutcome::invalid_structure);
    EXPECT_EQ(outcome(file + "----"), ValidationOutcome::invalid_structure);
    // Other line ends below the marker change nothing that is sealed.
    EXPECT_EQ(outcome(file + "\r\n\r\n"), ValidationOutcome::passed);
    EXPECT_EQ(outcome(replaced(file, "----\r\n\r\n", "----\n")), ValidationOutcome::passed);
    // The lines in the other order.
    const std::size_t first = file.find("Checksum0"), second = file.find("Checksum1");
    EXPECT_EQ(outcome(file.substr(0, first) + file.substr(second) + file.substr(first, second - first)),
              ValidationOutcome::invalid_structure);
}

TEST(Validator, WithoutMarkerOrSealNothingCanBeChecked) {
    const std::string file = sealed_file(example_record());
    const auto outcome = [](const std::string& bytes) { return validate_bytes(bytes).outcome; };
    EXPECT_EQ(outcome(file.substr(0, file.find(validation_marker))), ValidationOutcome::invalid_file);
    EXPECT_EQ(outcome(file.substr(0, file.find("Checksum0"))), ValidationOutcome::invalid_file);
    EXPECT_EQ(outcome(replaced(file, "----\r\n", "\r\n")), ValidationOutcome::invalid_file);
    EXPECT_EQ(outcome(replaced(file, "Checksum0: ", "Checksum: ")), ValidationOutcome::invalid_file);
    EXPECT_EQ(outcome(replaced(file, "Checksum1: ", "Checksum: ")), ValidationOutcome::invalid_file);
}

TEST(Validator, TheMarkersCharactersMayOccurInTheContent) {
    ValidationRecord record = example_record();
    record.user = "---- Somebody ----";
    EXPECT_EQ(validate_bytes(sealed_file(record)).outcome, ValidationOutcome::passed);
}

TEST(Validator, TimesAreTakenFromTheirOwnLines) {
    ValidationRecord record = example_record();
    record.user = "Total Computation Time:    0.001 seconds";
    EXPECT_EQ(validate_bytes(sealed_file(record)).computation_time, "1.250 seconds");
}

TEST(Validator, OtherVersions) {
    const std::string file = sealed_file(example_record());
    const auto outcome = [&](const std::string& version) {
        return validate_bytes(replaced(file, "1.3\r\n", version + "\r\n")).outcome;
    };
    EXPECT_EQ(outcome("1.0"), ValidationOutcome::unsupported_version);
    EXPECT_EQ(outcome("1.1"), ValidationOutcome::unsupported_version);
    EXPECT_EQ(outcome("1.2"), ValidationOutcome::invalid_hash);
    EXPECT_EQ(outcome("1.4"), ValidationOutcome::newer_version);
    EXPECT_EQ(outcome("1.30"), ValidationOutcome::newer_version);
    EXPECT_EQ(outcome(""), ValidationOutcome::newer_version);
    EXPECT_EQ(validate_bytes(replaced(of_version_1_2(), "1.2\r\n", "1.3\r\n")).outcome,
              ValidationOutcome::invalid_hash);
}

TEST(Validator, AnotherProgramsFileFails) {
    const std::string file = sealed_file(example_record(), test_sealer("another executable"));
    EXPECT_EQ(validate_bytes(file).outcome, ValidationOutcome::invalid_hash);
    const ValidationSealer other_build(qmp::bytes_of("another secret"), "0123abcd");
    EXPECT_EQ(validate_bytes(sealed_file(example_record(), other_build)).outcome,
              ValidationOutcome::invalid_hash);
}

TEST(Validator, AnyEncodingWillDo) {
    const std::string file = sealed_file(example_record());
    EXPECT_EQ(validate_bytes(file.substr(byte_order_mark.size())).outcome, ValidationOutcome::passed);
    std::string little = "\xff\xfe", big = "\xfe\xff";
    for (const char16_t unit : qmp::os::to_utf16(file.substr(byte_order_mark.size()))) {
        const char low = static_cast<char>(unit & 0xff), high = static_cast<char>(unit >> 8);
        little.append({low, high});
        big.append({high, low});
    }
    EXPECT_EQ(validate_bytes(little).outcome, ValidationOutcome::passed);
    EXPECT_EQ(validate_bytes(big).outcome, ValidationOutcome::passed);
}

TEST(ValidatorScreen, Texts) {
    const auto shown = [](const std::string& bytes) {
        return printed_by([&] { print_validation(validate_bytes(bytes)); });
    };
    const std::string file = sealed_file(example_record());
    EXPECT_EQ(shown(file),
              "Validation Format 1.3\n\nValidation Passed!\n"
              "Computation Time:   1.250 seconds\n"
              "Total Time:         2.062 seconds\n");
    EXPECT_EQ(shown(replaced(of_version_1_2(), "Somebody", "Nobody")),
              "Validation Format 1.2\n\n\nValidation Failed: Invalid Hash\n");
    EXPECT_EQ(shown(file.substr(0, file.find("Checksum0"))),
              "Validation Format 1.3\n\n\nValidation Failed - Invalid File\n");
    EXPECT_EQ(shown(file + "more"),
              "Validation Format 1.3\n\n\n"
              "Validation Failed: File is either invalid or has been tampered with.\n");
    EXPECT_EQ(shown(replaced(file, "1.3\r\n", "1.1\r\n")),
              "\nValidation file versions 1.0 an 1.1 are no longer supported.\n"
              "To validate this file, please use Kelvara v0.5.5.\n");
    EXPECT_EQ(shown(replaced(file, "1.3\r\n", "1.4\r\n")),
              "\nThis validation file version is too new.\nPlease use a newer version of Kelvara.\n");
}

TEST(ValidatorScreen, AddsTheExtensionAndTellsTheEncoding) {
    const kelvara_test::TemporaryFolder folder;
    std::ofstream(folder.native("a.txt"), std::ios::binary) << sealed_file(example_record());
    const std::string expected =
        "File Format: UTF-8\n\nValidation Format 1.3\n\nValidation Passed!\n"
        "Computation Time:   1.250 seconds\n"
        "Total Time:         2.062 seconds\n";
    EXPECT_EQ(printed_by([&] { validate_file(folder.path("a"), test_sealer()); }), expected);
    EXPECT_EQ(printed_by([&] { validate_file(folder.path("a.txt"), test_sealer()); }), expected);

    using namespace std::string_literals;
    const auto shown = [&](const std::string& bytes) {
        std::ofstream(folder.native("b.txt"), std::ios::binary) << bytes;
        return printed_by([&] { validate_file(folder.path("b"), test_sealer()); });
    };
    const std::string failure =
        "\n\n\nValidation Failed: File is either invalid or has been tampered with.\n";
    EXPECT_EQ(shown("\xff\xfe" + "a\0"s), "File Format: UTF-16 (Little Endian)" + failure);
    EXPECT_EQ(shown("\xfe\xff" + "\0a"s), "File Format: UTF-16 (Big Endian)" + failure);
    EXPECT_EQ(shown("a"), "File Format: UTF-8" + failure);
}

TEST(ValidatorScreen, ReportsAFileThatCannotBeRead) {
    const kelvara_test::TemporaryFolder folder;
    EXPECT_EQ(printed_by([&] { validate_file(folder.path("a"), test_sealer()); }),
              "\nUnable to open validation file: " + folder.path("a.txt") +
                  "\nError Code 2: Path does not exist.\n");
}

TEST(ValidatorScreen, AsksForThePath) {
    const kelvara_test::TemporaryFolder folder;
    const std::string printed = printed_by([&] {
        const kelvara_test::FedInput input(folder.path("a") + "\n");
        run_validator();
    });
    EXPECT_TRUE(
        printed.starts_with("Benchmark Validator\n\nEnter Path of Validation File:\n\nUnable to open"))
        << printed;
}

}  // namespace
}  // namespace kelvara
