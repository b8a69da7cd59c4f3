// A computation's settings as a record, and back.
#include <gtest/gtest.h>

#include "config/text_cursor.h"
#include "constants/catalogue.h"
#include "errors/exception.h"
#include "radix/digit_counts.h"
#include "sessions/random_settings.h"
#include "support/folder.h"
#include "support/messages.h"

namespace kelvara {
namespace {

using kelvara_test::message_of;

constexpr const char* ram_record =
    "Constant          :\tpi\r\n"
    "Algorithm         :\tchudnovsky\r\n"
    "p                 :\t53\r\n"
    "dec               :\t1000\r\n"
    "hex               :\t831\r\n"
    "path              :\tC:/my digits\r\n"
    "digits_per_file   :\t0\r\n"
    "tds               :\t3\r\n"
    "framework         :\tpushpool\r\n"
    "    worker threads:\t0\r\n"
    "    randomization :\t1\r\n"
    "allocator         :\tmmap\r\n"
    "    largepages    :\t1\r\n"
    "    locked        :\t1\r\n";

constexpr const char* swap_record =
    "minIO             :\t65536\r\n"
    "requested_memory  :\t4294967296\r\n"
    "Raid-File 0/3 Settings\t\r\n"
    "files          :\t1\r\n"
    "buffer_per_file:\t67108864\r\n"
    "buffer_total   :\t67108864\r\n"
    "Drive:\t0\r\n"
    "type       :\t0\r\n"
    "files      :\t1\r\n"
    "failed     :\t0\r\n"
    "block      :\t262144\r\n"
    "buffer_L   :\t256\r\n"
    "Path       :\t\r\n"
    "Status     :\t0\r\n";

template <typename Settings>
Settings load(const std::string& record) {
    qmp::TextCursor cursor(record);
    Settings settings;
    settings.load_settings(cursor);
    EXPECT_EQ(cursor.rest(), "");
    return settings;
}

std::string changed(const char* from, const char* to) {
    std::string record = ram_record;
    record.replace(record.find(from), std::string(from).size(), to);
    return record;
}

TEST(ComputationRecord, OfRamOnly) {
    RamSettings settings;
    settings.set_decimal_digits(1000);
    settings.output_path = "C:/my digits";
    settings.set_task_decomposition(3);
    settings.set_allocator("mmap");
    EXPECT_EQ(settings.print_settings(), ram_record);
    EXPECT_EQ(load<RamSettings>(ram_record).print_settings(), ram_record);
}

TEST(ComputationRecord, OfSwapMode) {
    const std::string record = std::string(ram_record) + swap_record;
    const auto settings = load<SwapSettings>(record);
    EXPECT_EQ(settings.decimal_digits(), 1000u);
    EXPECT_EQ(settings.output_path, "C:/my digits");
    EXPECT_EQ(settings.bytes_per_seek(), 65'536u);
    EXPECT_EQ(settings.memory_cap(), std::uint64_t{1} << 32);
    EXPECT_EQ(settings.raid_description(), "One path at: ** Default Path **");
    EXPECT_EQ(settings.print_settings(), record);
}

TEST(ComputationRecord, ComesBackAsItWasWritten) {
    kelvara_test::TemporaryFolder folder;
    kelvara_test::RandomSettings random(folder.path());
    for (std::uint64_t i = 0; i < 100 * kelvara_test::multiplier(); ++i) {
        const auto settings = random.next();
        const std::string record = settings->print_settings();
        SCOPED_TRACE(record);
        std::unique_ptr<ComputationSettings> copy = std::make_unique<RamSettings>();
        if (settings->mode() == ComputationMode::swap) copy = std::make_unique<SwapSettings>();
        qmp::TextCursor cursor(record);
        copy->load_settings(cursor);
        EXPECT_EQ(cursor.rest(), "");
        EXPECT_EQ(copy->print_settings(), record);
        // Configurations and records hold the same.
        EXPECT_EQ(copy->write_config().to_text(0), settings->write_config().to_text(0));
        EXPECT_EQ(copy->constant().full_name(), settings->constant().full_name());
        EXPECT_EQ(copy->constant().size(), settings->constant().size());
        EXPECT_EQ(copy->precision(), settings->precision());
    }
}

TEST(ComputationRecord, KeepsAHexadecimalCountOfItsOwn) {
    RamSettings settings;
    settings.set_decimal_digits(1000);
    settings.set_hexadecimal_digits(5000);
    RamSettings copy = load<RamSettings>(settings.print_settings());
    EXPECT_EQ(copy.hexadecimal_digits(), 5000u);
    EXPECT_EQ(copy.precision(), settings.precision());
    copy.set_decimal_digits(2000);
    EXPECT_EQ(copy.hexadecimal_digits(), 5000u);
    RamSettings following = load<RamSettings>(ram_record);
    following.set_decimal_digits(2000);
    EXPECT_EQ(following.hexadecimal_digits(), qmp::dec_to_hex(2000));
}

TEST(ComputationRecord, EveryCutIsAnError) {
    const std::string record = std::string(ram_record) + swap_record;
    for (std::size_t end = 0; end < record.size(); ++end) {
        qmp::TextCursor cursor(std::string_view(record).substr(0, end));
        SwapSettings settings;
        EXPECT_EQ(message_of<qmp::ParseException>([&] { settings.load_settings(cursor); }),
                  "Unexpected end of string.")
            << record.substr(0, end);
    }
}

TEST(ComputationRecord, RefusesWhatIsWrong) {
    const auto error = [](const std::string& record) {
        return message_of<qmp::ParseException>([&] { load<RamSettings>(record); });
    };
    EXPECT_EQ(error(changed("\t1000", "\t12x")), "Unexpected end of string.");
    EXPECT_EQ(error(changed("\t1000", " 1000")), "Unexpected end of string.");
    EXPECT_EQ(error(changed("\t1000", "\t")), "Unexpected end of string.");
    const auto refusal = [](const std::string& record) {
        return message_of<qmp::InvalidParametersException>([&] { load<RamSettings>(record); });
    };
    EXPECT_EQ(refusal(changed("\tpi", "\ttau")), "Invalid Constant: tau");
    EXPECT_EQ(refusal(changed("\t1000", "\t99")), "Computation size must be at least 100 decimal digits.");
    EXPECT_EQ(refusal(changed("\t831", "\t99")), "Computation size must be at least 100 decimal digits.");
    EXPECT_EQ(refusal(changed("tds               :\t3", "tds:\t0")),
              "Task decomposition must be between 1 and 65,536.");
    EXPECT_EQ(refusal(changed("\tpushpool", "\tpool")), "Invalid Parallel Framework: pool");
    EXPECT_EQ(refusal(changed("\tmmap", "\theap")), "Invalid Memory Allocator: heap");
}

// Labels are for people.
TEST(ComputationRecord, LabelsAreNotLookedAt) {
    EXPECT_EQ(load<RamSettings>(changed("dec               :", "anything")).print_settings(), ram_record);
}

// Kept as it is: an asterisk ends a string early, so a folder with one in its name does not come back.
TEST(ComputationRecord, AnAsteriskInThePathCannotBeLoaded) {
    EXPECT_EQ(message_of<qmp::ParseException>([] { load<RamSettings>(changed("my digits", "my*digits")); }),
              "Unexpected end of string.");
}

}  // namespace
}  // namespace kelvara
