// Saving a computation's settings in a file, and what is made of files.
#include "sessions/saved_computation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "constants/catalogue.h"
#include "errors/exception.h"
#include "errors/file_exception.h"
#include "sessions/ram_settings.h"
#include "support/console.h"
#include "support/folder.h"
#include "support/messages.h"
#include "support/working_folder.h"

namespace kelvara {
namespace {

using kelvara_test::FedInput;
using kelvara_test::message_of;
using kelvara_test::printed_by;

class SavedComputation : public testing::Test {
  protected:
    std::string save(const ComputationSettings& settings, const std::string& answer) const {
        return printed_by([&] {
            FedInput input(answer + "\n");
            save_computation(settings);
        });
    }
    // The settings of a file, as they would be written.
    std::string load(const std::string& answer) const {
        std::string text;
        printed_by([&] {
            FedInput input(answer + "\n");
            text = load_computation().current().write_config().to_text(0);
        });
        return text;
    }
    std::string put(const std::string& name, const std::string& content) const {
        std::ofstream(folder_.native(name), std::ios::binary) << content;
        return name;
    }
    std::string content(const std::string& name) const {
        std::ifstream file(folder_.native(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static RamSettings settings_of_e() {
        RamSettings settings;
        settings.set_constant(make_constant(id_e));
        settings.set_algorithm("exp(-1)");
        settings.set_decimal_digits(777);
        settings.set_hexadecimal_digits(0);
        return settings;
    }

    kelvara_test::TemporaryFolder folder_;
    kelvara_test::WorkingFolder working_folder_{folder_.path()};
};

TEST_F(SavedComputation, ComesBackFromItsFile) {
    const RamSettings settings = settings_of_e();
    EXPECT_EQ(save(settings, "mine"),
              "Enter path to save configuration file. (the .ini extension can be omitted)\nPath: ");
    EXPECT_TRUE(std::filesystem::exists(folder_.native("mine.ini")));
    const std::string text = settings.write_config().to_text(0);
    EXPECT_EQ(load("mine"), text);
    EXPECT_EQ(load("mine.ini"), text);
}

TEST_F(SavedComputation, AsksForTheFileToLoad) {
    save(settings_of_e(), "mine");
    EXPECT_EQ(printed_by([&] {
                  FedInput input("mine\n");
                  load_computation();
              }),
              "Enter path of configuration file. (the .ini extension can be omitted)\nPath: ");
}

TEST_F(SavedComputation, BeginsWithTheHeader) {
    save(settings_of_e(), "mine");
    const std::string text = content("mine.ini");
    EXPECT_EQ(text.find("\xef\xbb\xbf//  Kelvara Configuration File\r\n//  Version: "), 0u) << text;
    EXPECT_NE(
        text.find(
            "\r\n\r\n{\r\n    Action : \"CustomCompute\"\r\n    CustomCompute : {\r\n        Constant : {"),
        std::string::npos)
        << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\r'), std::count(text.begin(), text.end(), '\n'));
}

TEST_F(SavedComputation, ReplacesAFile) {
    put("mine.ini", std::string(100000, 'x'));
    save(settings_of_e(), "mine");
    EXPECT_LT(content("mine.ini").size(), 2000u);
    EXPECT_EQ(load("mine"), settings_of_e().write_config().to_text(0));
}

// Kept as it is: a dot in a folder's name counts.
TEST_F(SavedComputation, ADotAnywhereSuppressesTheExtension) {
    std::filesystem::create_directory(folder_.native("my.dir"));
    save(settings_of_e(), "my.dir/pi");
    EXPECT_TRUE(std::filesystem::exists(folder_.native("my.dir/pi")));
    EXPECT_EQ(load("my.dir/pi"), settings_of_e().write_config().to_text(0));
}

TEST_F(SavedComputation, CannotBeSavedWhereThereIsNoFolder) {
    EXPECT_EQ(message_of<qmp::FileIO::FileException>([&] { save(settings_of_e(), "none/mine"); }),
              "Unable to create file.");
    EXPECT_EQ(message_of<qmp::FileIO::FileException>([&] { load("mine"); }), "Unable to open file.");
}

TEST_F(SavedComputation, FilesOfOtherActionsAreRefused) {
    using qmp::InvalidParametersException;
    put("bench.ini", "{ Action : \"BenchIO\" BenchIO : {} }");
    put("lower.ini", "{ Action : \"customcompute\" customcompute : {} }");
    EXPECT_EQ(message_of<InvalidParametersException>([&] { load("bench"); }),
              "The I/O benchmark is not available in this build yet.");
    EXPECT_EQ(message_of<InvalidParametersException>([] { run_configuration("bench"); }),
              "The I/O benchmark is not available in this build yet.");
    EXPECT_EQ(message_of<InvalidParametersException>([&] { load("lower"); }),
              "Invalid Action: customcompute");
}

TEST_F(SavedComputation, OfSwapModeComesBackAndIsNotRun) {
    SwapSettings settings;
    settings.set_decimal_digits(12'345);
    settings.set_memory_cap(1 << 30);
    qmp::RaidSettings raid;
    ASSERT_EQ(raid.set_raid3({folder_.path(), folder_.path(), ""}), "");
    settings.set_raid(raid);
    save(settings, "swap");
    EXPECT_EQ(load("swap"), settings.write_config().to_text(0));
    std::string message;
    EXPECT_EQ(printed_by([&] {
                  message = message_of<qmp::InvalidParametersException>([] { run_configuration("swap"); });
              }),
              "\nSwap Mode is not available in this build yet.\n");
    EXPECT_EQ(message, "Cannot run computation with these parameters.");
}

}  // namespace
}  // namespace kelvara
