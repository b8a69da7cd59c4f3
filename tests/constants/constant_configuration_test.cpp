// Constants as objects of a configuration and in settings records.
#include "constants/constant_configuration.h"

#include <gtest/gtest.h>

#include "config/notation_parser.h"
#include "constants/catalogue.h"
#include "errors/exception.h"
#include "support/messages.h"

namespace kelvara {
namespace {

using kelvara_test::message_of;
using qmp::notation::Object;

Object object_of(const std::string& members) {
    const auto value = qmp::notation::parse("{" + members + "}");
    return std::move(static_cast<Object&>(*value));
}

std::unique_ptr<Constant> read(const std::string& members) {
    return read_constant(object_of(members));
}

std::string refusal(const std::string& members) {
    return message_of<qmp::InvalidParametersException>([&] { read(members); });
}

std::string error(const std::string& members) {
    return message_of<qmp::ParseException>([&] { read(members); });
}

std::string with_argument(const char* constant, const std::string& argument, const char* algorithm) {
    return "Constant : \"" + std::string(constant) + "\" Argument : " + argument + " Algorithm : \"" +
           algorithm + "\"";
}

TEST(ConstantConfiguration, IsWrittenInOrder) {
    EXPECT_EQ(write_constant(*make_constant(id_pi)).to_text(0),
              "{\r\n    Constant : \"pi\"\r\n    Algorithm : \"chudnovsky\"\r\n}\r\n");
    const auto root = make_constant(id_square_root);
    root->set_argument(15);
    EXPECT_EQ(write_constant(*root).to_text(0),
              "{\r\n    Constant : \"sqrt\"\r\n    Argument : 15\r\n    Algorithm : \"newton\"\r\n}\r\n");
}

TEST(ConstantConfiguration, OfEveryConstantAndAlgorithmComesBack) {
    for (std::uint32_t id = 0; id < constant_count; ++id) {
        const auto constant = make_constant(id);
        for (std::uint32_t algorithm = 0; algorithm < constant->info().algorithms.size(); ++algorithm) {
            constant->set_algorithm(algorithm);
            if (constant->argument()) constant->set_argument(23);
            const Object written = write_constant(*constant);
            const auto copy = read_constant(written);
            EXPECT_EQ(copy->id(), id);
            EXPECT_EQ(copy->algorithm(), algorithm);
            EXPECT_EQ(copy->argument(), constant->argument());
            EXPECT_EQ(write_constant(*copy).to_text(0), written.to_text(0));
        }
    }
}

TEST(ConstantConfiguration, ReadsEveryKeyOfAConstant) {
    for (const char* key : {"apery", "zeta3", "zeta(3)"}) {
        const auto constant = read("Constant : \"" + std::string(key) + "\" Algorithm : \"az-short\"");
        EXPECT_EQ(constant->id(), id_zeta3);
        EXPECT_EQ(write_constant(*constant).get_string("Constant", ""), "zeta(3)");
    }
    EXPECT_EQ(write_constant(*read("Constant : \"phi\" Algorithm : \"newton\"")).get_string("Constant", ""),
              "goldenratio");
}

TEST(ConstantConfiguration, ReadsAlgorithmsByDigitWhereThereIsOne) {
    EXPECT_EQ(read("Constant : \"pi\" Algorithm : \"1\"")->algorithm(), 1u);
    EXPECT_EQ(read("Constant : \"pi\" Algorithm : \"chudnovsky-reduced\"")->algorithm(), 2u);
    EXPECT_EQ(refusal("Constant : \"pi\" Algorithm : \"2\""), "Invalid Algorithm: 2");
    EXPECT_EQ(refusal("Constant : \"phi\" Algorithm : \"1\""), "Invalid Algorithm: 1");
    EXPECT_EQ(refusal("Constant : \"pi\" Algorithm : \"Chudnovsky\""), "Invalid Algorithm: Chudnovsky");
    EXPECT_EQ(refusal("Constant : \"pi\" Algorithm : \"\""), "Invalid Algorithm: ");
}

TEST(ConstantConfiguration, RefusesAnUnknownConstant) {
    EXPECT_EQ(refusal("Constant : \"Pi\" Algorithm : \"0\""), "Invalid Constant: Pi");
    EXPECT_EQ(refusal("Constant : \"\""), "Invalid Constant: ");
}

// The first and the last argument that each accepts, and their neighbours.
TEST(ConstantConfiguration, ArgumentsHaveLimits) {
    struct Range {
        const char* constant;
        const char* low;
        const char* high;
        const char* below;
        const char* above;
        const char* algorithm;
    };
    for (const Range& range : {Range{"arccoth", "2", "4294967295", "1", "4294967296", "series"},
                               Range{"log", "2", "2147483647", "1", "2147483648", "machin-primary"}}) {
        for (const char* good : {range.low, range.high}) {
            const auto constant = read(with_argument(range.constant, good, range.algorithm));
            EXPECT_EQ(std::to_string(*constant->argument()), good) << range.constant;
        }
        for (const char* bad : {"0", range.below, range.above}) {
            EXPECT_EQ(refusal(with_argument(range.constant, bad, range.algorithm)),
                      std::string(bad) + " is out of range.")
                << range.constant;
        }
        EXPECT_EQ(refusal(with_argument(range.constant, "-1", range.algorithm)),
                  "18446744073709551615 is out of range.");
    }
    EXPECT_EQ(read(with_argument("brent", "0", "0"))->argument(), 0u);
    EXPECT_EQ(read(with_argument("brent", "63", "0"))->argument(), 63u);
    // Kept as it is: the article.
    EXPECT_EQ(refusal(with_argument("brent", "64", "0")), "64 is a out of range.");
    EXPECT_EQ(refusal(with_argument("brent", "-1", "0")), "18446744073709551615 is a out of range.");
}

TEST(ConstantConfiguration, RootsOfPerfectSquaresAreRefused) {
    for (const char* square : {"4", "16", "1000000000000", "18446744065119617025"}) {
        EXPECT_EQ(refusal(with_argument("sqrt", square, "newton")),
                  std::string(square) + " is a perfect square.");
    }
    for (const char* good : {"2", "3", "15", "17", "18446744065119617024", "18446744065119617026"}) {
        EXPECT_EQ(std::to_string(*read(with_argument("sqrt", good, "newton"))->argument()), good);
    }
    for (const char* bad : {"0", "1"}) {
        EXPECT_EQ(refusal(with_argument("sqrt", bad, "newton")), std::string(bad) + " is out of range.");
    }
}

// Integers are signed in a configuration: the largest arguments are written as negative numbers.
TEST(ConstantConfiguration, TheLargestArgumentComesBack) {
    const auto root = make_constant(id_square_root);
    root->set_argument(UINT64_MAX);
    const Object written = write_constant(*root);
    EXPECT_EQ(written.get_integer("Argument", ""), -1);
    EXPECT_EQ(read_constant(written)->argument(), UINT64_MAX);
    EXPECT_EQ(read(with_argument("sqrt", "18446744073709551615", "0"))->argument(), UINT64_MAX);
}

TEST(ConstantConfiguration, ReportsTheFirstMissingKey) {
    EXPECT_EQ(error(""), "Key not found: Constant");
    EXPECT_EQ(error("Constant : \"sqrt\""), "Key not found: Argument");
    EXPECT_EQ(error("Constant : \"sqrt\" Argument : 3"), "Key not found: Algorithm");
    EXPECT_EQ(error("Constant : \"pi\" Argument : 3"), "Key not found: Algorithm");
}

TEST(ConstantConfiguration, NamesItselfInTypeErrors) {
    EXPECT_EQ(error("Constant : 3"), "Constant: Expected String, got Integer.");
    EXPECT_EQ(error("Constant : {}"), "Constant: Expected String, got Object.");
    EXPECT_EQ(error("Constant : \"sqrt\" Argument : \"3\""), "Constant: Expected Integer, got String.");
    EXPECT_EQ(error("Constant : \"pi\" Algorithm : [\"0\"]"), "Constant: Expected String, got Array.");
}

// Pi has no argument: one in the file is not looked at.
TEST(ConstantConfiguration, LeavesOtherKeysAlone) {
    EXPECT_EQ(read("Argument : \"none\" Constant : \"pi\" Algorithm : \"0\" More : 1")->id(), id_pi);
}

std::unique_ptr<Constant> load(const std::string& record) {
    qmp::TextCursor cursor(record);
    auto constant = load_constant(cursor);
    EXPECT_EQ(cursor.rest(), "");
    return constant;
}

TEST(ConstantRecord, HasALineForEachField) {
    EXPECT_EQ(print_constant(*make_constant(id_pi)),
              "Constant          :\tpi\r\nAlgorithm         :\tchudnovsky\r\n");
    const auto root = make_constant(id_square_root);
    root->set_argument(UINT64_MAX);
    EXPECT_EQ(print_constant(*root),
              "Constant          :\tsqrt\r\nArgument          :\t-1\r\nAlgorithm         :\tnewton\r\n");
}

TEST(ConstantRecord, OfEveryConstantAndAlgorithmComesBack) {
    for (std::uint32_t id = 0; id < constant_count; ++id) {
        const auto constant = make_constant(id);
        if (constant->argument()) constant->set_argument(7);
        for (std::uint32_t algorithm = 0; algorithm < constant->info().algorithms.size(); ++algorithm) {
            constant->set_algorithm(algorithm);
            const auto copy = load(print_constant(*constant));
            EXPECT_EQ(copy->id(), id);
            EXPECT_EQ(copy->argument(), constant->argument());
            EXPECT_EQ(copy->algorithm(), algorithm);
        }
    }
}

TEST(ConstantRecord, RefusesWhatIsWrong) {
    const auto refused = [](const char* record) {
        return message_of<qmp::InvalidParametersException>([&] { load(record); });
    };
    EXPECT_EQ(refused("c:\ttau\r\n"), "Invalid Constant: tau");
    EXPECT_EQ(refused("c:\tsqrt\r\na:\t16\r\n"), "16 is a perfect square.");
    EXPECT_EQ(refused("c:\tpi\r\na:\tmachin\r\n"), "Invalid Algorithm: machin");
    for (const char* record :
         {"", "pi\r\n", "c:\tpi\r\n", "c:\tsqrt\r\na:\t12x\r\n", "c:\tpi\r\na:\tchudnovsky"})
        EXPECT_EQ(message_of<qmp::ParseException>([&] { load(record); }), "Unexpected end of string.")
            << record;
}

}  // namespace
}  // namespace kelvara
