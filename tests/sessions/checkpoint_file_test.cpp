#include "sessions/checkpoint_file.h"

#include <gtest/gtest.h>

#include "errors/exception.h"
#include "platform/sha2.h"

namespace kelvara {
namespace {

constexpr const char* version = "0.7.3 Build 9474 (Linux/11-BD1 ~ Vessa)";
constexpr const char* no_header = "Header not found.";
constexpr const char* other_version = "Cannot resume computation. The version does not match.";
constexpr const char* corrupted = "Checksum Mismatch. Checkpoint file is corrupted.";

CheckpointSealer test_sealer(std::string_view secret = "the secret of tests") {
    return CheckpointSealer(qmp::bytes_of(secret));
}

Checkpoint example() {
    Checkpoint checkpoint;
    checkpoint.program_version = version;
    checkpoint.sequence_number = 12;
    checkpoint.sections[checkpoint_settings_section] = "Constant          :\tpi\r\n";
    checkpoint.sections[checkpoint_start_section] = "date_start        :\tThu Nov 12 21:11:02 2026\r\n";
    checkpoint.sections[1] = "Frame:\tFinal\r\nStep:\t0\r\n";
    checkpoint.sections[0] = "Frame:\tNormalFloatSessionS::run()\r\nStep:\t1\r\n";
    checkpoint.sections[checkpoint_event_log_section] = "";
    return checkpoint;
}

std::string example_text() {
    return checkpoint_text(example(), test_sealer());
}

// What is wrong with a file; empty when nothing is.
std::string refusal(const std::string& file) {
    try {
        parse_checkpoint(file, version, test_sealer());
        return "";
    } catch (const qmp::StringException& exception) {
        return exception.message();
    }
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return text.replace(place, from.size(), to);
}

TEST(CheckpointFile, ToTheByte) {
    const std::string line = "\r\n" + std::string(79, '/') + "\r\n//  ";
    std::string expected = "\xef\xbb\xbfKelvara Checkpoint File - DO NOT EDIT!!!\r\n" + line +
                           "-3\r\n"
                           "\r\n"
                           "Program Version: \t0.7.3 Build 9474 (Linux/11-BD1 ~ Vessa)\r\n"
                           "Sequence Number: \t12\r\n"
                           "\r\n"
                           "Hash: \t\r\n"
                           "\r\n" +
                           line + "-2\r\nConstant          :\tpi\r\n" + line +
                           "-1\r\ndate_start        :\tThu Nov 12 21:11:02 2026\r\n" + line +
                           "0\r\nFrame:\tNormalFloatSessionS::run()\r\nStep:\t1\r\n" + line +
                           "1\r\nFrame:\tFinal\r\nStep:\t0\r\n" + line + "2147483647\r\n";
    // Of the file without its digest.
    const std::string digest = test_sealer().seal(expected);
    EXPECT_EQ(example_text(), replaced(expected, "Hash: \t", "Hash: \t" + digest));
}

// Computed with another implementation of the digests.
TEST(CheckpointFile, SealIsAKeyedDigest) {
    EXPECT_EQ(test_sealer().seal("text"), "773418e442ddb5f8cd8d1b5667252469381d119c2c406431c969f57ba2d2af8f");
    EXPECT_NE(test_sealer("another secret").seal("text"), test_sealer().seal("text"));
    EXPECT_EQ(CheckpointSealer::of_this_build().seal("text"), CheckpointSealer::of_this_build().seal("text"));
}

TEST(CheckpointFile, IsReadBack) {
    const Checkpoint checkpoint = parse_checkpoint(example_text(), version, test_sealer());
    EXPECT_EQ(checkpoint.program_version, version);
    EXPECT_EQ(checkpoint.sequence_number, 12);
    EXPECT_EQ(checkpoint.sections, example().sections);
}

TEST(CheckpointFile, OfAnotherVersionIsNotLookedAtFurther) {
    EXPECT_EQ(refusal(replaced(example_text(), "0.7.3", "0.7.4")), other_version);
    EXPECT_EQ(refusal(replaced(example_text(), "Linux", "Windows")), other_version);
    EXPECT_EQ(refusal(replaced(example_text(), "Sequence Number: \t12\r\n", "Something else\r\n")),
              corrupted);
    EXPECT_EQ(refusal(replaced(replaced(example_text(), "9474", "9475"), "Sequence Number: \t12", "Else")),
              other_version);
}

TEST(CheckpointFile, WithoutAHeader) {
    EXPECT_EQ(refusal(""), no_header);
    EXPECT_EQ(refusal("Any text at all.\r\n"), no_header);
    EXPECT_EQ(refusal(replaced(example_text(), "//  -3", "//  -4")), no_header);
    EXPECT_EQ(refusal(replaced(example_text(), "//  -3", "//  -3 ")), no_header);
    EXPECT_EQ(refusal(replaced(example_text(), "//  -3", "//  99999999999999")), no_header);
    EXPECT_EQ(refusal(replaced(example_text(), "//\r\n", "/\r\n")), no_header);
    std::string line_feeds = example_text();
    std::erase(line_feeds, '\r');
    EXPECT_EQ(refusal(line_feeds), no_header);
}

TEST(CheckpointFile, AnyChangedByteIsSeen) {
    const std::string file = example_text();
    const std::size_t header = file.find("//  -3") + 8;
    const std::size_t value = file.find(version);
    for (std::size_t place = 0; place < file.size(); ++place) {
        for (const int change : {0x01, 0x20, 0x80, 0xff}) {
            std::string changed = file;
            changed[place] = static_cast<char>(changed[place] ^ change);
            const std::string found = refusal(changed);
            // The first section's beginning makes it the header, and the version's line is looked at first.
            const bool in_version = place >= header && place < value + std::string(version).size() + 2;
            const bool is_header = place >= file.find("\r\n\r\n//") && place < header;
            if (in_version && found == other_version) continue;
            if (is_header && found == no_header) continue;
            EXPECT_EQ(found, corrupted) << place << " ^ " << change;
        }
    }
}

TEST(CheckpointFile, CutFilesAreSeen) {
    const std::string file = example_text();
    for (std::size_t size = 0; size < file.size(); ++size) {
        const std::string found = refusal(file.substr(0, size));
        // An identifier with half a line end is none.
        const std::size_t identified = file.find("//  -3") + 6;
        EXPECT_EQ(found, size < identified || size == identified + 1 ? no_header : corrupted) << size;
    }
    EXPECT_EQ(refusal(file + "more"), corrupted);
    EXPECT_EQ(refusal(file + file), corrupted);
}

TEST(CheckpointFile, OfAnotherBuildIsCorrupted) {
    EXPECT_EQ(refusal(checkpoint_text(example(), test_sealer("another secret"))), corrupted);
}

}  // namespace
}  // namespace kelvara
