// The settings of a computation as an object of a configuration.
#include "sessions/ram_configuration.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "config/notation_parser.h"
#include "constants/catalogue.h"
#include "errors/exception.h"
#include "errors/file_exception.h"
#include "platform/memory/interleave_allocator.h"
#include "platform/parallel/registry.h"
#include "radix/digit_counts.h"
#include "support/console.h"
#include "support/folder.h"
#include "support/messages.h"
#include "support/random_words.h"

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

    Object object() const {
        std::string text = "{";
        const std::pair<const char*, const std::string*> members[] = {
            {"Constant", &constant}, {"ComputeSize", &size},        {"Output", &output},
            {"Mode", &mode},         {"Parallelism", &parallelism}, {"Allocator", &allocator}};
        for (const auto& [key, member] : members) {
            if (!member->empty()) text += std::string(key) + " : " + *member + "\r\n";
        }
        const auto value = qmp::notation::parse(text + "}");
        return std::move(static_cast<Object&>(*value));
    }
};

std::string refusal(const Texts& texts) {
    return message_of<qmp::InvalidParametersException>([&] { read_settings(texts.object()); });
}

std::string error(const Texts& texts) {
    return message_of<qmp::ParseException>([&] { read_settings(texts.object()); });
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
        const RamSettings settings = read_settings(texts.object());
        read.decimal = settings.decimal_digits();
        read.hexadecimal = settings.hexadecimal_digits();
    });
    return read;
}

TEST(RamConfiguration, IsWrittenInOrder) {
    RamSettings settings;
    settings.set_constant(make_constant(id_e));
    settings.set_decimal_digits(1000);
    settings.set_hexadecimal_digits(0);
    settings.output_path = "a b";
    settings.set_task_decomposition(3);
    settings.set_framework("none");
    settings.set_allocator("malloc");
    EXPECT_EQ(write_settings(settings).to_text(0),
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

TEST(RamConfiguration, IsRead) {
    const RamSettings settings = read_settings(Texts{}.object());
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

class RandomSettings {
  public:
    explicit RandomSettings(std::string folder) : folder_(std::move(folder)) {}

    RamSettings next() {
        RamSettings settings;
        auto constant = make_constant(static_cast<std::uint32_t>(random_.between(0, constant_count - 1)));
        if (constant->argument())
            constant->set_argument(constant->id() == id_euler_gamma_override ? below(64) : root());
        constant->set_algorithm(static_cast<std::uint32_t>(below(constant->info().algorithms.size())));
        settings.set_constant(std::move(constant));
        settings.set_decimal_digits(random_.between(100, std::uint64_t{1} << random_.between(7, 49)));
        if (flip()) settings.set_hexadecimal_digits(0);
        if (flip()) settings.output_path = folder_;
        settings.set_task_decomposition(random_.between(1, 65536));
        settings.set_framework(
            qmp::make_parallelizer(qmp::parallelizer_keys()[below(qmp::parallelizer_keys().size())]));
        const std::uint64_t flag = std::string(settings.framework().get_type_name()) == "pushpool" ? 5 : 4;
        if (flip()) settings.framework().handle_menu_option(flag);
        settings.set_allocator(allocator());
        return settings;
    }

  private:
    std::uint64_t below(std::uint64_t limit) { return random_.next() % limit; }
    bool flip() { return below(2) == 0; }
    // No square is 2 modulo 4.
    std::uint64_t root() { return below(std::uint64_t{1} << 28) * 4 + 2; }

    std::unique_ptr<qmp::BasicAllocator> allocator() {
        constexpr const char* keys[] = {"malloc", "mmap"};
        if (flip()) {
            auto interleave = std::make_unique<qmp::InterleaveAllocator>();
            interleave->hashed = flip();
            interleave->nodes.assign(random_.between(1, 5), random_.next());
            return interleave;
        }
        auto made = qmp::make_allocator(keys[below(2)]);
        for (std::uint64_t times = below(4); times > 0; --times)
            made->handle_menu_option(random_.between(3, 4));
        return made;
    }

    kelvara_test::Random random_;
    std::string folder_;
};

TEST(RamConfiguration, ComesBackAsItWasWritten) {
    kelvara_test::TemporaryFolder folder;
    const std::string odd = folder.path("a b {c} [d] 'e' \xc3\xa4 \xe2\x82\xac");
    std::filesystem::create_directory(std::u8string(odd.begin(), odd.end()));
    RandomSettings random(odd);
    for (std::uint64_t i = 0; i < 100 * kelvara_test::multiplier(); ++i) {
        const RamSettings settings = random.next();
        const std::string text = write_settings(settings).to_text(0);
        SCOPED_TRACE(text);
        const auto parsed = qmp::notation::parse(text);
        const RamSettings copy = read_settings(static_cast<const Object&>(*parsed));
        EXPECT_EQ(write_settings(copy).to_text(0), text);
        EXPECT_EQ(copy.constant().full_name(), settings.constant().full_name());
        EXPECT_EQ(copy.constant().algorithm(), settings.constant().algorithm());
        EXPECT_EQ(copy.decimal_digits(), settings.decimal_digits());
        EXPECT_EQ(copy.hexadecimal_digits(), settings.hexadecimal_digits());
        EXPECT_EQ(copy.precision(), settings.precision());
        EXPECT_EQ(copy.output_path, settings.output_path);
        EXPECT_EQ(copy.task_decomposition(), settings.task_decomposition());
        EXPECT_EQ(copy.framework().to_string(1), settings.framework().to_string(1));
        EXPECT_STREQ(copy.allocator().get_type_name(), settings.allocator().get_type_name());
        EXPECT_EQ(copy.allocator().print_settings(), settings.allocator().print_settings());
    }
}

// Kept as it is: the file only knows hexadecimal output as on or off.
TEST(RamConfiguration, AHexadecimalCountOfItsOwnIsNotKept) {
    RamSettings settings;
    settings.set_decimal_digits(1000);
    settings.set_hexadecimal_digits(200);
    EXPECT_EQ(read_settings(write_settings(settings)).hexadecimal_digits(), qmp::dec_to_hex(1000));
}

TEST(RamConfiguration, SizesAreBroughtIntoTheLimits) {
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

TEST(RamConfiguration, TooFewDigitsPerFileTurnCompressionOff) {
    for (const char* digits : {"1", "999999"}) {
        std::uint64_t read = 1;
        Texts texts{.output = std::string("{ Path : \"\" DigitsPerFile : ") + digits + " }"};
        EXPECT_EQ(printed_by([&] { read = read_settings(texts.object()).digits_per_file(); }),
                  "Warning: Digits per file below minimum: Disabling compression.\n");
        EXPECT_EQ(read, 0u);
    }
}

TEST(RamConfiguration, CompressionIsNotAvailableYet) {
    Texts texts{.size = "{ DecimalDigits : 2000000 EnableHexDigits : \"true\" }"};
    for (const char* digits : {"1000000", "-1"}) {
        texts.output = std::string("{ Path : \"\" DigitsPerFile : ") + digits + " }";
        EXPECT_EQ(refusal(texts), "Compressed digit files are not available in this build yet.");
    }
    texts.size = "{ DecimalDigits : 999999 EnableHexDigits : \"false\" }";
    EXPECT_EQ(refusal(texts), "Too few digits to compress.");
}

TEST(RamConfiguration, TheOutputFolderMustBeWritable) {
    kelvara_test::TemporaryFolder folder;
    std::ofstream(folder.native("file")) << "no folder";
    for (const char* name : {"missing", "file"}) {
        Texts texts{.output = "{ Path : \"" + folder.path(name) + "\" DigitsPerFile : 0 }"};
        EXPECT_EQ(message_of<qmp::FileIO::FileException>([&] { read_settings(texts.object()); }),
                  "Path is not writable.");
    }
}

TEST(RamConfiguration, OnlyRamOnlyIsAvailable) {
    EXPECT_EQ(refusal({.mode = "\"swap\""}), "Swap Mode is not available in this build yet.");
    for (const char* mode : {"Swap", "Ram", "RAM", "ram ", ""}) {
        EXPECT_EQ(refusal({.mode = "\"" + std::string(mode) + "\""}), std::string("Invalid Mode: ") + mode);
    }
}

TEST(RamConfiguration, ReportsEveryMissingKey) {
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

TEST(RamConfiguration, NamesTheObjectInEveryTypeError) {
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

TEST(RamConfiguration, RefusesWhatItsPartsRefuse) {
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
