// The validation file that a run wrote, and everything that can happen to it on its way to the validator.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "config/text_file.h"
#include "platform/os/unicode.h"
#include "sessions/session_run.h"
#include "sessions/validation_file.h"
#include "sessions/validator.h"

namespace kelvara {
namespace {

ValidationResult validate_bytes(const std::string& bytes) {
    static const ValidationSealer sealer = ValidationSealer::of_this_program();
    return validate(qmp::decode_text(bytes).text, sealer);
}

ValidationOutcome outcome(const std::string& bytes) {
    return validate_bytes(bytes).outcome;
}

// Of pi to 100 digits.
const std::string& file_of_a_run() {
    static const std::string file = [] {
        const kelvara_test::TemporaryFolder folder;
        const kelvara_test::WorkingFolder work(folder.path());
        RamSettings settings;
        settings.set_decimal_digits(100);
        settings.set_framework("none");
        settings.set_task_decomposition(1);
        settings.output_path = folder.path();
        settings.check();
        RamSession(settings).run();
        std::string text;
        for (const auto& entry : std::filesystem::directory_iterator(folder.native(""))) {
            if (entry.path().filename().string().starts_with("Pi - 2")) {
                text = kelvara_test::file_content(entry.path().string());
            }
        }
        return text;
    }();
    return file;
}

std::size_t content_size() {
    return file_of_a_run().rfind(validation_marker) + validation_marker.size();
}

TEST(ValidationOfARun, Passes) {
    const ValidationResult result = validate_bytes(file_of_a_run());
    EXPECT_EQ(result.outcome, ValidationOutcome::passed);
    EXPECT_EQ(result.format, "1.3");
    EXPECT_TRUE(result.computation_time.ends_with(" seconds")) << result.computation_time;
    EXPECT_TRUE(result.wall_time.ends_with(" seconds")) << result.wall_time;
}

TEST(ValidationOfARun, EveryChangedByteFails) {
    const std::string& file = file_of_a_run();
    const std::size_t version = file.find(validation_version_label);
    const std::size_t version_end = file.find('\r', version);
    ASSERT_GT(content_size(), 1000u);
    std::map<ValidationOutcome, std::uint64_t> counts;
    // All but the last line's end, which nobody needs.
    for (std::size_t place = 0; place + 2 < file.size(); ++place) {
        // The next character, another case, another sheet of the code, and all bits.
        for (const int change : {0x01, 0x20, 0x80, 0xff}) {
            std::string changed = file;
            changed[place] = static_cast<char>(changed[place] ^ change);
            const ValidationOutcome found = outcome(changed);
            ++counts[found];
            if (place < content_size()) {
                EXPECT_NE(found, ValidationOutcome::passed) << place << " ^ " << change;
            }
            const bool decides = place + 1 >= version && place <= version_end;
            if (place < content_size() - validation_marker.size() && !decides) {
                EXPECT_EQ(found, ValidationOutcome::invalid_hash) << place << " ^ " << change;
            }
        }
    }
    for (const ValidationOutcome seen :
         {ValidationOutcome::invalid_file, ValidationOutcome::invalid_hash,
          ValidationOutcome::invalid_structure, ValidationOutcome::newer_version}) {
        EXPECT_GT(counts[seen], 0u) << static_cast<int>(seen);
    }
    // Nothing but other white space between marker and seal.
    EXPECT_LE(counts[ValidationOutcome::passed], 4u);
}

TEST(ValidationOfARun, CutAnywhereItFails) {
    const std::string& file = file_of_a_run();
    const std::size_t second = file.find(checksum1_label) + checksum1_label.size();
    const std::size_t version_end = file.find('\r', file.find(validation_version_label));
    for (std::size_t size = 0; size < file.size() - 2; ++size) {
        const ValidationOutcome found = outcome(file.substr(0, size));
        if (size < version_end) {
            EXPECT_NE(found, ValidationOutcome::passed) << size;
        } else if (size < second) {
            EXPECT_EQ(found, ValidationOutcome::invalid_file) << size;
        } else if (size > second) {
            EXPECT_EQ(found, ValidationOutcome::invalid_hash) << size;
        } else {
            EXPECT_EQ(found, ValidationOutcome::invalid_structure) << "a checksum without a character";
        }
    }
}

TEST(ValidationOfARun, TheMarkerStandsOnce) {
    const std::string& file = file_of_a_run();
    std::string doubled = file;
    EXPECT_EQ(outcome(doubled.insert(content_size(), "\r\n----")), ValidationOutcome::invalid_hash);
    std::string longer = file;
    EXPECT_EQ(outcome(longer.insert(content_size(), "-")), ValidationOutcome::invalid_hash);
    EXPECT_EQ(outcome(file + "----\r\n"), ValidationOutcome::invalid_structure);
    EXPECT_EQ(outcome(file + file), ValidationOutcome::invalid_hash);
}

TEST(ValidationOfARun, WhatFollowsTheSealFails) {
    const std::string& file = file_of_a_run();
    EXPECT_EQ(outcome(file + "x"), ValidationOutcome::invalid_structure);
    EXPECT_EQ(outcome(file + std::string(100, '\0')), ValidationOutcome::invalid_structure);
    EXPECT_EQ(outcome(file + file.substr(file.find(checksum1_label))), ValidationOutcome::invalid_structure);
    // Empty lines are nothing.
    EXPECT_EQ(outcome(file + "\r\n \r\n"), ValidationOutcome::passed);
}

TEST(ValidationOfARun, WithoutItsSealItIsNoFile) {
    const std::string& file = file_of_a_run();
    EXPECT_EQ(outcome(file.substr(0, content_size())), ValidationOutcome::invalid_file);
    EXPECT_EQ(outcome(file.substr(content_size())), ValidationOutcome::invalid_structure);
}

// The seal is of the text. An editor that saves the same text in another encoding has changed nothing; one
// that changes line ends has.
TEST(ValidationOfARun, OtherEncodingsPassAndOtherLineEndsFail) {
    const std::string& file = file_of_a_run();
    const std::string text = file.substr(byte_order_mark.size());
    EXPECT_EQ(outcome(text), ValidationOutcome::passed);
    std::string little = "\xff\xfe", big = "\xfe\xff";
    for (const char16_t unit : qmp::os::to_utf16(text)) {
        const char low = static_cast<char>(unit & 0xff), high = static_cast<char>(unit >> 8);
        little.append({low, high});
        big.append({high, low});
    }
    EXPECT_EQ(outcome(little), ValidationOutcome::passed);
    EXPECT_EQ(outcome(big), ValidationOutcome::passed);
    // Half a unit more.
    EXPECT_EQ(outcome(little + '\0'), ValidationOutcome::invalid_structure);
    // Every unit of such a copy is as good as the byte that it stands for.
    for (std::size_t place = 2; place < 2 * (content_size() - byte_order_mark.size()); place += 97) {
        std::string changed = little;
        changed[place] = static_cast<char>(changed[place] ^ 1);
        EXPECT_NE(outcome(changed), ValidationOutcome::passed) << place;
    }

    std::string line_feeds = file, returns = file;
    std::erase(line_feeds, '\r');
    std::erase(returns, '\n');
    EXPECT_EQ(outcome(line_feeds), ValidationOutcome::invalid_hash);
    EXPECT_EQ(outcome(returns), ValidationOutcome::invalid_structure);
}

}  // namespace
}  // namespace kelvara
