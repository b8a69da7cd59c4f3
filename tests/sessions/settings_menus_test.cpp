// The menus that change a computation's settings, fed from a file.
#include <gtest/gtest.h>

#include "constants/catalogue.h"
#include "digitfiles/qcd_file_writer.h"
#include "errors/exception.h"
#include "sessions/memory_menu.h"
#include "sessions/mode_menu.h"
#include "sessions/output_format_menu.h"
#include "sessions/ram_settings.h"
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

TEST(OutputFormatMenu, OneCompressedFile) {
    RamSettings settings = settings_of(1'000'000, 0);
    EXPECT_EQ(print_output_menu(settings, "1\n"), std::string(output_formats) + "option: \n");
    EXPECT_EQ(settings.digits_per_file(), qmp::unlimited_digits_per_file);
    print_output_menu(settings, "0\n");
    EXPECT_EQ(settings.digits_per_file(), 0u);
}

TEST(OutputFormatMenu, AsksForTheDigitsOfEachFile) {
    RamSettings settings = settings_of(1'000'000, 0);
    const std::string text = print_output_menu(settings, "2\n999999\n-5\n1000000000000051\n\n1m\n");
    EXPECT_NE(text.find("option: \nEnter the number of digits: "), std::string::npos) << text;
    EXPECT_TRUE(
        text.ends_with("\n\nDigits per file: Digits per file: Digits per file: Digits per file: "
                       "Digits per file: \n"))
        << text;
    EXPECT_EQ(settings.digits_per_file(), 1'000'000u);
}

// Compression that was chosen before the digits became too few for it.
TEST(OutputFormatMenu, FewerDigitsKeepFromStarting) {
    RamSettings settings = settings_of(1'000'000, 0);
    settings.set_digits_per_file(1'000'000);
    EXPECT_EQ(settings.obstacle(), "");
    settings.set_decimal_digits(999'999);
    EXPECT_EQ(settings.obstacle(), "Too few digits to compress.");
    settings.set_digits_per_file(0);
    EXPECT_EQ(settings.obstacle(), "");
}

std::string print_mode_menu(CustomSettings& settings, const char* answers) {
    return printed_by([&] {
        FedInput input(answers);
        ask_mode(settings);
    });
}

TEST(ModeMenu, ShowsWhatTheModesTake) {
    CustomSettings settings;
    settings.current().set_hexadecimal_digits(0);
    const std::string text = print_mode_menu(settings, "0\n3\nram\n1\n");
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
    EXPECT_EQ(settings.mode(), ComputationMode::ram_only);
}

TEST(ModeMenu, ChangesTheModeAndBack) {
    CustomSettings settings;
    const std::string swap = print_mode_menu(settings, "2\n");
    EXPECT_EQ(settings.mode(), ComputationMode::swap);
    // The estimate of Ram Only is for what is current, whatever its mode.
    EXPECT_EQ(print_mode_menu(settings, "2\n"), swap);
    print_mode_menu(settings, "1\n");
    EXPECT_EQ(settings.mode(), ComputationMode::ram_only);
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
    const std::string before = settings.write_config().to_text(0);
    EXPECT_EQ(occurrences(print_memory_menu(settings, "1\n1\n0\n"), "Memory Settings\n"), 3u);
    EXPECT_EQ(settings.write_config().to_text(0), before);
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

std::string print_memory_menu(SwapSettings& settings, const char* answers) {
    return printed_by([&] {
        FedInput input(answers);
        edit_memory(settings);
    });
}

// A build that cannot run the computation does not know what it takes.
TEST(SwapMemoryMenu, ShowsWhatIsKnown) {
    SwapSettings settings;
    settings.set_memory_cap(1'000'000'000);
    settings.set_allocator("malloc");
    EXPECT_EQ(print_memory_menu(settings, "3\n-1\n0\n"),
              "Memory Settings\n\n"
              "    Twiddle Factor Tables     not available in this build yet\n"
              "    Disk I/O Buffers          67,108,864 (64.0 MiB)\n"
              "    Minimum Working Memory    not available in this build yet\n"
              "    ----------------------------------------\n"
              "    Minimum Total Memory      not available in this build yet\n\n"
              "    Current Working Memory    not available in this build yet\n"
              "    Current Total Memory      1,000,000,000 ( 954 MiB)\n\n"
              "Options:\n\n"
              "   1    Adjust Total Memory\n"
              "   2    Memory Allocator:       C malloc()\n"
              "   0    Done!\n\n"
              "In Swap Mode, memory is used as a cache for disk. So it's usually best\n"
              "to use as much as possible without running out of memory.\n\n"
              "option: option: option: \n");
}

TEST(SwapMemoryMenu, AdjustsTheTotalMemory) {
    SwapSettings settings;
    const std::string text = print_memory_menu(settings, "1\n2.5GB\n0\n");
    EXPECT_NE(text.find("option: \nPlease Select a Memory Cap:\n\n"
                        "Enter a memory limit: (e.g. 768MB, 2.5GB, etc...)\nBytes: \nMemory Settings\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(settings.memory_cap(), std::uint64_t{5} << 29);
    print_memory_menu(settings, "1\n99E\n0\n");
    EXPECT_EQ(settings.memory_cap(), 0x6ffffffffffffff9u);
}

TEST(SwapMemoryMenu, ChoosesAnAllocatorAndItsOwnOptions) {
    SwapSettings settings;
    settings.set_allocator("malloc");
    print_memory_menu(settings, "2\n1\n3\n0\n");
    EXPECT_STREQ(settings.allocator().get_type_name(), "mmap");
    EXPECT_EQ(settings.allocator().write_config().get_string("LargePages", ""), "forced");
}

// What a constant needs that cannot be computed is not known.
TEST(Menus, OfConstantsThatCannotBeComputedSaySo) {
    CustomSettings settings;
    auto gamma = make_constant(id_euler_gamma_override);
    gamma->set_argument(63);  // the refined algorithm takes one less
    settings.current().set_constant(std::move(gamma));
    const std::string text = "The parameter n = 2^62 is too large for this size.";
    auto& ram = static_cast<RamSettings&>(settings.current());
    EXPECT_EQ(message_of<qmp::InvalidParametersException>([&] { edit_memory(ram); }), text);
    EXPECT_EQ(ram.obstacle(), text);
    EXPECT_FALSE(ram.can_run());
    EXPECT_NE(print_mode_menu(settings, "1\n").find("1      Ram Only             " + text + "\n"),
              std::string::npos);
}

}  // namespace
}  // namespace kelvara
