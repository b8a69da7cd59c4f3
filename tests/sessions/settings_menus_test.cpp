// The menus that change a computation's settings, fed from a file.
#include <gtest/gtest.h>

#include "constants/catalogue.h"
#include "errors/exception.h"
#include "sessions/memory_menu.h"
#include "sessions/mode_menu.h"
#include "sessions/output_format_menu.h"
#include "sessions/ram_configuration.h"
#include "support/console.h"
#include "support/messages.h"

namespace kelvara {
namespace {

using kelvara_test::FedInput;
using kelvara_test::message_of;
using kelvara_test::printed_by;

constexpr const char* output_formats =
    "Select an Output Format:\n\n"
    "  0     Write to a text file. Do not compress.\n"
    "  1     Compress digits into a single .qcd file.\n"
    "  2     Compress digits into multiple .qcd files with a user-specified\n"
    "        number of digits per file.\n\n";

RamSettings settings_of(std::uint64_t decimal, std::uint64_t hexadecimal) {
    RamSettings settings;
    settings.set_decimal_digits(decimal);
    settings.set_hexadecimal_digits(hexadecimal);
    return settings;
}

std::string print_output_menu(RamSettings& settings, const char* answers) {
    return printed_by([&] {
        FedInput input(answers);
        ask_output_format(settings);
    });
}

TEST(OutputFormatMenu, IsNotForSmallComputations) {
    for (auto [decimal, hexadecimal] : {std::pair{999'999, 0}, {2'000'000, 999'999}, {999'999, 2'000'000}}) {
        RamSettings settings = settings_of(decimal, hexadecimal);
        EXPECT_EQ(print_output_menu(settings, ""), "Computation is too small for compression.\n\n");
    }
}

TEST(OutputFormatMenu, AsksUntilTheAnswerIsInRange) {
    for (const std::uint64_t hexadecimal : {0, 1'000'000}) {
        RamSettings settings = settings_of(1'000'000, hexadecimal);
        EXPECT_EQ(print_output_menu(settings, "3\n-1\n99999999999999999999\n0\n"),
                  std::string(output_formats) + "option: option: option: option: \n");
        EXPECT_EQ(settings.digits_per_file(), 0u);
    }
}

TEST(OutputFormatMenu, CompressionIsNotAvailableYet) {
    RamSettings settings = settings_of(1'000'000, 0);
    const std::string before = write_settings(settings).to_text(0);
    std::string message;
    printed_by([&] {
        FedInput input("1\n");
        message = message_of<qmp::InvalidParametersException>([&] { ask_output_format(settings); });
    });
    EXPECT_EQ(message, "Compressed digit files are not available in this build yet.");
    const std::string text = printed_by([&] {
        FedInput input("2\n999999\n-5\n1000000000000051\n\n1m\n");
        message = message_of<qmp::InvalidParametersException>([&] { ask_output_format(settings); });
    });
    EXPECT_EQ(message, "Compressed digit files are not available in this build yet.");
    EXPECT_NE(text.find("option: \nEnter the number of digits: "), std::string::npos) << text;
    EXPECT_TRUE(
        text.ends_with("\n\nDigits per file: Digits per file: Digits per file: Digits per file: "
                       "Digits per file: "))
        << text;
    EXPECT_EQ(write_settings(settings).to_text(0), before);
}

std::string print_mode_menu(RamSettings& settings, const char* answers, std::string& message) {
    return printed_by([&] {
        FedInput input(answers);
        message = message_of<qmp::InvalidParametersException>([&] { ask_mode(settings); });
    });
}

TEST(ModeMenu, OffersRamOnly) {
    RamSettings settings = settings_of(50'000, 0);
    std::string message;
    const std::string text = print_mode_menu(settings, "0\n3\nram\n1\n", message);
    EXPECT_EQ(message, "nothing was thrown");
    const std::string start =
        "Select a Mode:\n\n"
        "Option      Mode            Memory      Disk Memory\n\n"
        "1      Ram Only             ";
    const std::string end =
        " 0 bytes\n"
        "2      Swap Mode         >  not available in this build yet\n\n"
        "*Disk usage varies with the amount of memory that is being used.\n"
        "More memory usually means more disk usage. The value shown here is for\n"
        "the lowest possible amount of working memory.\n\n"
        "Memory and disk usage estimates are provable upper-bounds for what they\n"
        "are measuring. But they do not include unmeasureable overheads such as\n"
        "run-time libraries, bookkeeping, OS system memory, etc...\n\n"
        "Disk usage estimates is for the amount of logical data. If redundent\n"
        "RAID is involved, then the disk requirement will scale up accordingly.\n\n"
        "option: option: option: option: ";
    EXPECT_EQ(text.substr(0, start.size()), start);
    EXPECT_TRUE(text.ends_with(end)) << text;
    // The disk's column.
    EXPECT_EQ(text.size(), start.size() + 12 + end.size()) << text;
}

TEST(ModeMenu, SwapModeIsNotAvailableYet) {
    RamSettings settings;
    const std::string before = write_settings(settings).to_text(0);
    std::string message;
    print_mode_menu(settings, "2\n", message);
    EXPECT_EQ(message, "Swap Mode is not available in this build yet.");
    EXPECT_EQ(write_settings(settings).to_text(0), before);
}

std::string print_memory_menu(RamSettings& settings, const char* answers) {
    return printed_by([&] {
        FedInput input(answers);
        edit_memory(settings);
    });
}

std::uint64_t occurrences(const std::string& text, const std::string& part) {
    std::uint64_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(MemoryMenu, ShowsWhatTheComputationReserves) {
    RamSettings settings;
    settings.set_allocator("malloc");
    const std::string text = print_memory_menu(settings, "3\n-1\n0\n");
    EXPECT_TRUE(text.starts_with("Memory Settings\n\n    Twiddle Factor Tables     ")) << text;
    EXPECT_NE(text.find("\n    Working Memory            "), std::string::npos) << text;
    EXPECT_NE(text.find("\n    ----------------------------------------\n    Total Memory              "),
              std::string::npos)
        << text;
    EXPECT_TRUE(
        text.ends_with("\n\nOptions:\n\n"
                       "   1    Adjust Total Memory (not available in this mode)\n"
                       "   2    Memory Allocator:       C malloc()\n"
                       "   0    Done!\n\n"
                       "option: option: option: \n"))
        << text;
}

TEST(MemoryMenu, OptionOneChangesNothing) {
    RamSettings settings;
    settings.set_allocator("malloc");
    const std::string before = write_settings(settings).to_text(0);
    EXPECT_EQ(occurrences(print_memory_menu(settings, "1\n1\n0\n"), "Memory Settings\n"), 3u);
    EXPECT_EQ(write_settings(settings).to_text(0), before);
}

TEST(MemoryMenu, ChoosesAnAllocatorAndItsOwnOptions) {
    RamSettings settings;
    settings.set_allocator("malloc");
    const std::string text = print_memory_menu(settings, "2\n3\n1\n3\n5\n4\n0\n");
    EXPECT_EQ(occurrences(text, "Select a Memory Allocator:\n\n"), 1u);
    EXPECT_STREQ(settings.allocator().get_type_name(), "mmap");
    const auto config = settings.allocator().write_config();
    EXPECT_EQ(config.get_string("LargePages", ""), "forced");
    EXPECT_EQ(config.get_string("LockedPages", ""), "forced");
}

// What a constant needs that this build cannot compute is not known.
}  // namespace
}  // namespace kelvara
