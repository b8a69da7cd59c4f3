#include "config/configuration_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "errors/exception.h"
#include "errors/file_exception.h"
#include "support/folder.h"
#include "support/messages.h"
#include "support/notation_trees.h"

namespace {

using qmp::add_default_extension;
using qmp::Configuration;
using qmp::configuration_text;
using qmp::load_configuration;

constexpr std::string_view actions[] = {"CustomCompute", "BenchIO"};

TEST(ConfigurationFile, TheExtensionIsAddedToPathsWithoutADot) {
    EXPECT_EQ(add_default_extension("pi", "ini"), "pi.ini");
    EXPECT_EQ(add_default_extension("pi.ini", "ini"), "pi.ini");
    EXPECT_EQ(add_default_extension("pi.txt", "ini"), "pi.txt");
    EXPECT_EQ(add_default_extension("pi.", "ini"), "pi.");
    EXPECT_EQ(add_default_extension("", "ini"), ".ini");
    // Kept as it is: a dot in a folder's name counts.
    EXPECT_EQ(add_default_extension("my.dir/pi", "ini"), "my.dir/pi");
}

TEST(ConfigurationFile, ExplainsItself) {
    Configuration configuration{"BenchIO", {}};
    configuration.settings.insert_integer("Memory", 5);
    EXPECT_EQ(configuration_text("v1.2 Build 3", std::move(configuration)),
              "\xef\xbb\xbf//  Kelvara Configuration File\r\n"
              "//  Version: v1.2 Build 3\r\n"
              "//\r\n"
              "//  Load this from Kelvara or run directly:\r\n"
              "//      Kelvara config filename.ini\r\n"
              "//\r\n"
              "//  If you're copying Windows file paths into here, be sure to replace\r\n"
              "//  all backslashes \"\\\" with forward slashes \"/\". Backslash is an\r\n"
              "//  escape character.\r\n"
              "//\r\n"
              "\r\n"
              "{\r\n"
              "    Action : \"BenchIO\"\r\n"
              "    BenchIO : {\r\n"
              "        Memory : 5\r\n"
              "    }\r\n"
              "\r\n"
              "}\r\n");
}

class ConfigurationFiles : public testing::Test {
  protected:
    std::string put(const std::string& name, const std::string& content) const {
        std::ofstream(folder_.native(name), std::ios::binary) << content;
        return folder_.path(name);
    }
    template <typename Exception>
    std::string complaint(const std::string& content) const {
        const std::string path = put("a.ini", content);
        return kelvara_test::message_of<Exception>([&] { load_configuration(path, actions); });
    }
    kelvara_test::TemporaryFolder folder_;
};

TEST_F(ConfigurationFiles, ComeBackAsTheyWereSaved) {
    kelvara_test::Random random;
    for (int i = 0; i < 50; ++i) {
        Configuration saved{"CustomCompute", {}};
        saved.settings.insert("Tree", kelvara_test::random_tree(random, 4));
        const auto copy = saved.settings.clone();
        const std::string path = put("a.ini", configuration_text("1", std::move(saved)));
        const Configuration loaded = load_configuration(path, actions);
        EXPECT_EQ(loaded.action, "CustomCompute");
        EXPECT_TRUE(kelvara_test::same_tree(loaded.settings, *copy));
    }
}

// Their folder's name decides whether an extension is added to a whole path.
TEST_F(ConfigurationFiles, MayBeNamedWithoutTheirExtension) {
    const bool dot_in_folder = folder_.path().find('.') != std::string::npos;
    put("pi", "{Action:\"BenchIO\" BenchIO:{A:1}}");
    put("pi.ini", "{Action:\"BenchIO\" BenchIO:{A:2}}");
    EXPECT_EQ(load_configuration(folder_.path("pi.ini"), actions).settings.get_integer("A", ""), 2);
    EXPECT_EQ(load_configuration(folder_.path("pi"), actions).settings.get_integer("A", ""),
              dot_in_folder ? 1 : 2);
}

TEST_F(ConfigurationFiles, UnknownActionsAreRefused) {
    using qmp::InvalidParametersException;
    EXPECT_EQ(complaint<InvalidParametersException>("{Action:\"customcompute\" customcompute:{}}"),
              "Invalid Action: customcompute");
    EXPECT_EQ(complaint<InvalidParametersException>("{Action:\"\"}"), "Invalid Action: ");
    EXPECT_EQ(complaint<InvalidParametersException>("{CustomCompute:1 Action:\"Action\"}"),
              "Invalid Action: Action");
}

TEST_F(ConfigurationFiles, WrongContentIsAParseException) {
    using qmp::ParseException;
    EXPECT_EQ(complaint<ParseException>("[1]"), "Expected Object, got Array.");
    EXPECT_EQ(complaint<ParseException>("{CustomCompute:{}}"), "Key not found: Action");
    EXPECT_EQ(complaint<ParseException>("{Action:1}"), "Expected String, got Integer.");
    EXPECT_EQ(complaint<ParseException>("{Action:\"BenchIO\" CustomCompute:{}}"), "Key not found: BenchIO");
    EXPECT_EQ(complaint<ParseException>("{Action:\"BenchIO\" BenchIO:[]}"), "Expected Object, got Array.");
    EXPECT_EQ(complaint<ParseException>("{Action:\n\"BenchIO}"),
              "Line 2: Unexpected null character or end of file.");
    EXPECT_EQ(kelvara_test::message_of<qmp::FileIO::FileException>(
                  [&] { load_configuration(folder_.path("none.ini"), actions); }),
              "Unable to open file.");
}

}  // namespace
