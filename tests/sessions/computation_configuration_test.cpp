// The settings of a computation as an object of a configuration.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "config/notation_parser.h"
#include "constants/catalogue.h"
#include "errors/exception.h"
#include "errors/file_exception.h"
#include "radix/digit_counts.h"
#include "sessions/custom_settings.h"
#include "sessions/random_settings.h"
#include "support/console.h"
#include "support/folder.h"
#include "support/messages.h"

namespace kelvara {
namespace {

using kelvara_test::message_of;
using kelvara_test::printed_by;
using qmp::notation::Object;

// The members of a configuration as texts, so that a test can change or leave out one.
struct Texts {
    std::string constant = "{ Constant : \"pi\" Algorithm : \"ramanujan\" }";
    std::string size = "{ DecimalDigits : 12345 EnableHexDigits : \"true\" }";
    std::string output = "{ Path : \"\" DigitsPerFile : 0 }";
    std::string mode = "\"ram\"";
    std::string parallelism = "{ TaskDecomposition : 7 Framework : \"none\" }";
    std::string allocator = "{ Allocator : \"malloc\" }";
    std::string bytes_per_seek = {};
    std::string memory = {};
    std::string raid_file = {};

    Object object() const {
        std::string text = "{";
        const std::pair<const char*, const std::string*> members[] = {{"Constant", &constant},
                                                                      {"ComputeSize", &size},
                                                                      {"Output", &output},
                                                                      {"Mode", &mode},
                                                                      {"Parallelism", &parallelism},
                                                                      {"Allocator", &allocator},
                                                                      {"BytesPerSeek", &bytes_per_seek},
                                                                      {"Memory", &memory},
                                                                      {"RaidFile", &raid_file}};
        for (const auto& [key, member] : members) {
            if (!member->empty()) text += std::string(key) + " : " + *member + "\r\n";
        }
        const auto value = qmp::notation::parse(text + "}");
        return std::move(static_cast<Object&>(*value));
    }
};

// Those of Swap Mode.
Texts swap_texts() {
    Texts texts{.mode = "\"swap\""};
    texts.bytes_per_seek = "65536";
    texts.memory = "1000000000";
    texts.raid_file = "{ BufferPerFile : 2000000 Lanes : [{ Type : \"raid0\" Paths : [\"\" \"\"] }] }";
    return texts;
}

std::string refusal(const Texts& texts) {
    return message_of<qmp::InvalidParametersException>([&] { CustomSettings::read(texts.object()); });
}

std::string error(const Texts& texts) {
    return message_of<qmp::ParseException>([&] { CustomSettings::read(texts.object()); });
}

struct Read {
    std::string printed;
    std::uint64_t decimal = 0;
    std::uint64_t hexadecimal = 0;
};

Read read_size_of(const std::string& digits, const char* hexadecimal) {
    Read read;
    Texts texts{.size = "{ DecimalDigits : " + digits + " EnableHexDigits : \"" + hexadecimal + "\" }"};
    read.printed = printed_by([&] {
        const CustomSettings settings = CustomSettings::read(texts.object());
        read.decimal = settings.current().decimal_digits();
        read.hexadecimal = settings.current().hexadecimal_digits();
    });
    return read;
}

TEST(ComputationConfiguration, IsWrittenInOrder) {
    RamSettings settings;
    settings.set_constant(make_constant(id_e));
    settings.set_decimal_digits(1000);
    settings.set_hexadecimal_digits(0);
    settings.output_path = "a b";
    settings.set_task_decomposition(3);
    settings.set_framework("none");
    settings.set_allocator("malloc");
    EXPECT_EQ(settings.write_config().to_text(0),
              "{\r\n"
              "    Constant : {\r\n"
              "        Constant : \"e\"\r\n"
              "        Algorithm : \"exp(1)\"\r\n"
              "    }\r\n\r\n"
              "    ComputeSize : {\r\n"
              "        DecimalDigits : 1000\r\n"
              "        EnableHexDigits : \"false\"\r\n"
              "    }\r\n\r\n"
              "    Output : {\r\n"
              "        Path : \"a b\"\r\n"
              "        DigitsPerFile : 0\r\n"
              "    }\r\n\r\n"
              "    Mode : \"ram\"\r\n"
              "    Parallelism : {\r\n"
              "        TaskDecomposition : 3\r\n"
              "        Framework : \"none\"\r\n"
              "    }\r\n\r\n"
              "    Allocator : {\r\n"
              "        Allocator : \"malloc\"\r\n"
              "    }\r\n\r\n"
              "}\r\n");
}

TEST(ComputationConfiguration, IsRead) {
    const CustomSettings custom = CustomSettings::read(Texts{}.object());
    EXPECT_EQ(custom.mode(), ComputationMode::ram_only);
    const ComputationSettings& settings = custom.current();
    EXPECT_EQ(settings.constant().id(), id_pi);
    EXPECT_EQ(settings.constant().algorithm(), 1u);
    EXPECT_EQ(settings.decimal_digits(), 12345u);
    EXPECT_EQ(settings.hexadecimal_digits(), qmp::dec_to_hex(12345));
    EXPECT_EQ(settings.precision(), (qmp::dec_to_hex(12345) >> 4) + 2);
    EXPECT_EQ(settings.constant().size(), settings.precision());
    EXPECT_EQ(settings.output_path, "");
    EXPECT_EQ(settings.digits_per_file(), 0u);
    EXPECT_EQ(settings.task_decomposition(), 7u);
    EXPECT_STREQ(settings.framework().get_type_name(), "none");
    EXPECT_STREQ(settings.allocator().get_type_name(), "malloc");
    EXPECT_TRUE(settings.can_run());
}

TEST(ComputationConfiguration, ComesBackAsItWasWritten) {
    kelvara_test::TemporaryFolder folder;
    const std::string odd = folder.path("a b {c} [d] 'e' \xc3\xa4 \xe2\x82\xac");
    std::filesystem::create_directory(std::u8string(odd.begin(), odd.end()));
    kelvara_test::RandomSettings random(odd);
    for (std::uint64_t i = 0; i < 100 * kelvara_test::multiplier(); ++i) {
        const auto settings = random.next();
        const std::string text = settings->write_config().to_text(0);
        SCOPED_TRACE(text);
        const auto parsed = qmp::notation::parse(text);
        CustomSettings custom = CustomSettings::read(static_cast<const Object&>(*parsed));
        const ComputationSettings& copy = custom.current();
        EXPECT_EQ(copy.write_config().to_text(0), text);
        // Nothing that a file does not name differs either.
        EXPECT_EQ(copy.print_settings(), settings->print_settings());
        EXPECT_EQ(copy.mode(), settings->mode());
        EXPECT_EQ(copy.constant().full_name(), settings->constant().full_name());
        EXPECT_EQ(copy.constant().algorithm(), settings->constant().algorithm());
        EXPECT_EQ(copy.decimal_digits(), settings->decimal_digits());
        EXPECT_EQ(copy.hexadecimal_digits(), settings->hexadecimal_digits());
        EXPECT_EQ(copy.precision(), settings->precision());
        EXPECT_EQ(copy.output_path, settings->output_path);
        EXPECT_EQ(copy.task_decomposition(), settings->task_decomposition());
        EXPECT_EQ(copy.framework().to_string(1), settings->framework().to_string(1));
        EXPECT_EQ(copy.allocator().print_settings(), settings->allocator().print_settings());
        if (const SwapSettings* swap = custom.swap()) {
            const auto& original = static_cast<const SwapSettings&>(*settings);
            EXPECT_EQ(swap->memory_cap(), original.memory_cap());
            EXPECT_EQ(swap->bytes_per_seek(), original.bytes_per_seek());
            EXPECT_EQ(swap->raid().buffer_total(), original.raid().buffer_total());
        }
    }
}

// Kept as it is: the file only knows hexadecimal output as on or off.
TEST(ComputationConfiguration, AHexadecimalCountOfItsOwnIsNotKept) {
    RamSettings settings;
    settings.set_decimal_digits(1000);
    settings.set_hexadecimal_digits(200);
    EXPECT_EQ(CustomSettings::read(settings.write_config()).current().hexadecimal_digits(),
              qmp::dec_to_hex(1000));
}

TEST(ComputationConfiguration, SizesAreBroughtIntoTheLimits) {
    const char* below = "Warning: Precision below minimum. Adjusting to minimum.\n";
    const char* above = "Warning: Precision above maximum: Clipping to maximum.\n";
    for (const char* digits : {"99", "0", "-1", "-9223372036854775808"}) {
        const Read read = read_size_of(digits, "true");
        EXPECT_EQ(read.printed, below) << digits;
        EXPECT_EQ(read.decimal, 100u) << digits;
        EXPECT_EQ(read.hexadecimal, 84u) << digits;
    }
    for (const char* digits : {"1000000000000051", "9223372036854775807"}) {
        const Read read = read_size_of(digits, "false");
        EXPECT_EQ(read.printed, above) << digits;
        EXPECT_EQ(read.decimal, 1000000000000050u) << digits;
        EXPECT_EQ(read.hexadecimal, 0u) << digits;
    }
    for (const std::uint64_t digits : {std::uint64_t{100}, std::uint64_t{1000000000000050}}) {
        const Read read = read_size_of(std::to_string(digits), "true");
        EXPECT_EQ(read.printed, "");
        EXPECT_EQ(read.decimal, digits);
        EXPECT_EQ(read.hexadecimal, qmp::dec_to_hex(digits));
    }
}

TEST(ComputationConfiguration, TooFewDigitsPerFileTurnCompressionOff) {
    for (const char* digits : {"1", "999999"}) {
        std::uint64_t read = 1;
        Texts texts{.output = std::string("{ Path : \"\" DigitsPerFile : ") + digits + " }"};
        EXPECT_EQ(
            printed_by([&] { read = CustomSettings::read(texts.object()).current().digits_per_file(); }),
            "Warning: Digits per file below minimum: Disabling compression.\n");
        EXPECT_EQ(read, 0u);
    }
}

TEST(ComputationConfiguration, Compression) {
    Texts texts{.size = "{ DecimalDigits : 2000000 EnableHexDigits : \"true\" }"};
    for (const std::int64_t digits : {std::int64_t{1000000}, std::int64_t{-1}, std::int64_t{0}}) {
        texts.output = "{ Path : \"\" DigitsPerFile : " + std::to_string(digits) + " }";
        const CustomSettings settings = CustomSettings::read(texts.object());
        EXPECT_EQ(settings.current().digits_per_file(), static_cast<std::uint64_t>(digits));
        EXPECT_NE(settings.current().write_config().to_text(0).find(std::to_string(digits)),
                  std::string::npos);
    }
    texts.output = "{ Path : \"\" DigitsPerFile : -1 }";
    texts.size = "{ DecimalDigits : 999999 EnableHexDigits : \"false\" }";
    EXPECT_EQ(refusal(texts), "Too few digits to compress.");
}

TEST(ComputationConfiguration, TheOutputFolderMustBeWritable) {
    kelvara_test::TemporaryFolder folder;
    std::ofstream(folder.native("file")) << "no folder";
    for (const char* name : {"missing", "file"}) {
        Texts texts{.output = "{ Path : \"" + folder.path(name) + "\" DigitsPerFile : 0 }"};
        EXPECT_EQ(message_of<qmp::FileIO::FileException>([&] { CustomSettings::read(texts.object()); }),
                  "Path is not writable.");
    }
}

TEST(ComputationConfiguration, RefusesOtherModes) {
    for (const char* mode : {"Swap", "SWAP", "Ram", "RAM", "ram ", ""}) {
        EXPECT_EQ(refusal({.mode = "\"" + std::string(mode) + "\""}), std::string("Invalid Mode: ") + mode);
    }
}

TEST(ComputationConfiguration, OfSwapModeIsRead) {
    CustomSettings custom = CustomSettings::read(swap_texts().object());
    EXPECT_EQ(custom.mode(), ComputationMode::swap);
    const SwapSettings* settings = custom.swap();
    ASSERT_NE(settings, nullptr);
    EXPECT_EQ(settings->constant().algorithm(), 1u);
    EXPECT_EQ(settings->decimal_digits(), 12345u);
    EXPECT_EQ(settings->task_decomposition(), 7u);
    EXPECT_EQ(settings->bytes_per_seek(), 65'536u);
    EXPECT_EQ(settings->memory_cap(), 1'000'000'000u);
    EXPECT_EQ(settings->raid_description(), "RAID 0 with 2 paths");
    EXPECT_EQ(settings->raid().buffer_per_file(), 2'000'000u);
    EXPECT_FALSE(settings->can_run());
}

TEST(ComputationConfiguration, OfSwapModeIsWrittenInOrder) {
    SwapSettings settings;
    settings.set_memory_cap(5);
    const Object object = settings.write_config();
    std::vector<std::string> keys;
    for (const auto& member : object.members()) keys.push_back(member.key);
    EXPECT_EQ(keys, (std::vector<std::string>{"Constant", "ComputeSize", "Output", "Mode", "Parallelism",
                                              "Allocator", "BytesPerSeek", "Memory", "RaidFile"}));
    EXPECT_EQ(object.get_string("Mode", ""), "swap");
    // The default, which follows the swap files.
    EXPECT_EQ(object.get_integer("BytesPerSeek", ""), 0);
    EXPECT_EQ(object.get_integer("Memory", ""), 5);
    EXPECT_EQ(object.get_object("RaidFile", "").to_text(0),
              "{\r\n    BufferPerFile : 67108864\r\n    Lanes : []\r\n}\r\n");
}

TEST(ComputationConfiguration, OfSwapModeMissesItsOwnKeys) {
    Texts texts = swap_texts();
    texts.raid_file = "";
    EXPECT_EQ(error(texts), "Key not found: RaidFile");
    texts.memory = "";
    EXPECT_EQ(error(texts), "Key not found: Memory");
    texts.bytes_per_seek = "";
    EXPECT_EQ(error(texts), "Key not found: BytesPerSeek");
}

TEST(ComputationConfiguration, OfSwapModeRefusesWrongValues) {
    Texts texts = swap_texts();
    texts.bytes_per_seek = "\"1M\"";
    EXPECT_EQ(error(texts), "Custom Compute: Expected Integer, got String.");
    texts = swap_texts();
    texts.memory = "{}";
    EXPECT_EQ(error(texts), "Custom Compute: Expected Integer, got Object.");
    texts = swap_texts();
    texts.raid_file = "[]";
    EXPECT_EQ(error(texts), "Custom Compute: Expected Object, got Array.");
    texts.raid_file = "{ BufferPerFile : 1 Lanes : [{ Type : \"raid5\" Paths : [] }] }";
    EXPECT_EQ(refusal(texts), "Invalid Raid Type: raid5");
}

TEST(ComputationConfiguration, FiguresOfSwapModeAreBroughtIntoTheirLimits) {
    const auto read = [](const char* bytes_per_seek, const char* memory) {
        Texts texts = swap_texts();
        texts.bytes_per_seek = bytes_per_seek;
        texts.memory = memory;
        CustomSettings settings = CustomSettings::read(texts.object());
        return std::pair(settings.swap()->bytes_per_seek(), settings.swap()->memory_cap());
    };
    EXPECT_EQ(read("1000", "0"), (std::pair<std::uint64_t, std::uint64_t>(4096, 0)));
    EXPECT_EQ(read("0", "9223372036854775807"),
              (std::pair<std::uint64_t, std::uint64_t>(2 << 20, 0x6ffffffffffffff9)));
    EXPECT_EQ(read("-1", "-1"),
              (std::pair<std::uint64_t, std::uint64_t>(0x7fffffffffffffff, 0x6ffffffffffffff9)));
}

// Ram Only does not look at them.
TEST(ComputationConfiguration, OfRamOnlyMayHoldTheKeysOfSwapMode) {
    Texts texts = swap_texts();
    texts.mode = "\"ram\"";
    texts.memory = "\"none\"";
    EXPECT_EQ(CustomSettings::read(texts.object()).mode(), ComputationMode::ram_only);
}

TEST(ComputationConfiguration, ReportsEveryMissingKey) {
    EXPECT_EQ(error({.constant = ""}), "Key not found: Constant");
    EXPECT_EQ(error({.constant = "{}"}), "Key not found: Constant");
    EXPECT_EQ(error({.size = ""}), "Key not found: ComputeSize");
    EXPECT_EQ(error({.size = "{ EnableHexDigits : \"true\" }"}), "Key not found: DecimalDigits");
    EXPECT_EQ(error({.size = "{ DecimalDigits : 50 }"}), "Key not found: EnableHexDigits");
    EXPECT_EQ(error({.output = ""}), "Key not found: Output");
    EXPECT_EQ(error({.output = "{ DigitsPerFile : 0 }"}), "Key not found: Path");
    EXPECT_EQ(error({.output = "{ Path : \"\" }"}), "Key not found: DigitsPerFile");
    EXPECT_EQ(error({.mode = ""}), "Key not found: Mode");
    EXPECT_EQ(error({.parallelism = ""}), "Key not found: Parallelism");
    EXPECT_EQ(error({.parallelism = "{}"}), "Key not found: TaskDecomposition");
    EXPECT_EQ(error({.allocator = ""}), "Key not found: Allocator");
    EXPECT_EQ(error({.allocator = "{}"}), "Key not found: Allocator");
}

TEST(ComputationConfiguration, NamesTheObjectInEveryTypeError) {
    EXPECT_EQ(error({.constant = "1"}), "Custom Compute: Expected Object, got Integer.");
    EXPECT_EQ(error({.size = "[]"}), "Custom Compute: Expected Object, got Array.");
    EXPECT_EQ(error({.size = "{ DecimalDigits : \"1\" EnableHexDigits : \"true\" }"}),
              "Computation Size: Expected Integer, got String.");
    EXPECT_EQ(error({.size = "{ DecimalDigits : 100 EnableHexDigits : 1 }"}),
              "Computation Size: Expected String, got Integer.");
    EXPECT_EQ(error({.size = "{ DecimalDigits : 100 EnableHexDigits : \"yes\" }"}),
              "Expected true or false.");
    EXPECT_EQ(error({.output = "\"\""}), "Custom Compute: Expected Object, got String.");
    EXPECT_EQ(error({.output = "{ Path : 1 DigitsPerFile : 0 }"}),
              "Output Format: Expected String, got Integer.");
    EXPECT_EQ(error({.output = "{ Path : \"\" DigitsPerFile : \"0\" }"}),
              "Output Format: Expected Integer, got String.");
    EXPECT_EQ(error({.mode = "0"}), "Custom Compute: Expected String, got Integer.");
    EXPECT_EQ(error({.parallelism = "0"}), "Custom Compute: Expected Object, got Integer.");
    EXPECT_EQ(error({.allocator = "\"malloc\""}), "Custom Compute: Expected Object, got String.");
}

TEST(ComputationConfiguration, RefusesWhatItsPartsRefuse) {
    EXPECT_EQ(refusal({.constant = "{ Constant : \"tau\" }"}), "Invalid Constant: tau");
    EXPECT_EQ(refusal({.constant = "{ Constant : \"sqrt\" Argument : 16 Algorithm : \"0\" }"}),
              "16 is a perfect square.");
    EXPECT_EQ(refusal({.parallelism = "{ TaskDecomposition : 0 Framework : \"none\" }"}),
              "Task decomposition must be between 1 and 65,536.");
    EXPECT_EQ(refusal({.parallelism = "{ TaskDecomposition : 1 Framework : \"None\" }"}),
              "Invalid Parallel Framework: None");
    EXPECT_EQ(refusal({.allocator = "{ Allocator : \"mmap\" LargePages : \"on\" LockedPages : \"forced\" }"}),
              "Invalid Mode: on");
    EXPECT_EQ(
        refusal({.allocator =
                     "{ Allocator : \"interleave\" Hashed : \"true\" LockedPages : \"forced\" Nodes : [] }"}),
        "Node list cannot be empty.");
}

}  // namespace
}  // namespace kelvara
