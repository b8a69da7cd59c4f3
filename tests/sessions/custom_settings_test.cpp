// One object of settings for each mode, and the change between them.
#include "sessions/custom_settings.h"

#include <gtest/gtest.h>

#include "constants/catalogue.h"
#include "platform/memory/mmap_allocator.h"

namespace kelvara {
namespace {

std::string record_of(const CustomSettings& settings) {
    return settings.current().print_settings();
}

TEST(CustomSettings, ModesHaveKeys) {
    EXPECT_EQ(mode_of_key("ram"), ComputationMode::ram_only);
    EXPECT_EQ(mode_of_key("swap"), ComputationMode::swap);
    for (const char* key : {"", "Ram", "SWAP", "swap ", "disk"}) EXPECT_FALSE(mode_of_key(key)) << key;
}

TEST(CustomSettings, BeginWithRamOnly) {
    CustomSettings settings;
    EXPECT_EQ(settings.mode(), ComputationMode::ram_only);
    EXPECT_EQ(settings.current().mode(), ComputationMode::ram_only);
    EXPECT_EQ(settings.swap(), nullptr);
    EXPECT_EQ(settings.current().constant().id(), id_pi);
}

TEST(CustomSettings, EveryModeKeepsItsChoices) {
    CustomSettings settings;
    settings.current().set_decimal_digits(1000);
    settings.current().set_framework("none");
    const std::string ram = record_of(settings);

    settings.set_mode(ComputationMode::swap);
    ASSERT_NE(settings.swap(), nullptr);
    settings.current().set_constant(make_constant(id_e));
    settings.current().set_decimal_digits(2000);
    settings.current().set_allocator("malloc");
    settings.swap()->set_memory_cap(12345);
    settings.swap()->set_bytes_per_seek(99999);
    const std::string swap = record_of(settings);

    settings.set_mode(ComputationMode::ram_only);
    EXPECT_EQ(settings.swap(), nullptr);
    EXPECT_EQ(record_of(settings), ram);
    settings.current().set_decimal_digits(3000);

    settings.set_mode(ComputationMode::swap);
    EXPECT_EQ(record_of(settings), swap);
    settings.set_mode(ComputationMode::swap);
    EXPECT_EQ(record_of(settings), swap);
}

TEST(CustomSettings, AModeBeginsWithWhatItSharesWithTheOneLeft) {
    CustomSettings settings;
    ComputationSettings& ram = settings.current();
    auto root = make_constant(id_square_root);
    root->set_argument(15);
    ram.set_constant(std::move(root));
    ram.set_decimal_digits(2000);
    ram.set_hexadecimal_digits(123);
    ram.output_path = "somewhere";
    ram.set_task_decomposition(5);
    ram.set_framework("cppasync");
    ram.framework().handle_menu_option(4);
    auto mmap = std::make_unique<qmp::MmapAllocator>();
    mmap->locked_pages = qmp::PageMode::forced;
    ram.set_allocator(std::move(mmap));
    const std::string shared = ram.print_settings();

    settings.set_mode(ComputationMode::swap);
    EXPECT_TRUE(record_of(settings).starts_with(shared)) << record_of(settings);
    EXPECT_EQ(settings.current().output_folder(), "somewhere");
    // The count was chosen, so it stays.
    settings.current().set_decimal_digits(3000);
    EXPECT_EQ(settings.current().hexadecimal_digits(), 123u);
    // Copies: the other mode's are not touched.
    settings.current().set_algorithm("newton");
    settings.current().framework().handle_menu_option(4);
    settings.set_mode(ComputationMode::ram_only);
    EXPECT_EQ(record_of(settings), shared);
}

TEST(CustomSettings, ALoadedModeAlsoSharesWithTheOther) {
    SwapSettings swap;
    swap.set_decimal_digits(777);
    CustomSettings settings = CustomSettings::read(swap.write_config());
    EXPECT_EQ(settings.mode(), ComputationMode::swap);
    settings.set_mode(ComputationMode::ram_only);
    EXPECT_EQ(settings.current().decimal_digits(), 777u);
}

TEST(CustomSettings, CanBeMoved) {
    CustomSettings settings;
    settings.set_mode(ComputationMode::swap);
    settings.current().set_decimal_digits(777);
    CustomSettings moved;
    moved = std::move(settings);
    EXPECT_EQ(moved.mode(), ComputationMode::swap);
    EXPECT_EQ(moved.current().decimal_digits(), 777u);
}

}  // namespace
}  // namespace kelvara
