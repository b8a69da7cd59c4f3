#include "digitfiles/ordalis/count.h"

#include <gtest/gtest.h>

#include <string>

#include "digitfiles/files.h"
#include "digitfiles/text_reader.h"
#include "support/console.h"

namespace Ordalis {
namespace {

using kelvara_test::printed_by;
using kelvara_test::TemporaryFile;

TEST(Count, DecimalDigits) {
    const TemporaryFile file("digits.txt", "3.1415926535897932384626433832795028841971");
    qmp::TextReader reader(file.path());
    EXPECT_EQ(printed_by([&] { count_digits(reader, 0, 40); }), "1 - 40 :\t{1,4,5,6,4,4,3,3,5,5}\n");
    EXPECT_EQ(printed_by([&] { count_digits(reader, 2, 5); }), "3 - 5 :\t{0,1,0,0,0,1,0,0,0,1}\n");
    EXPECT_EQ(printed_by([&] { count_digits(reader, 39, 40); }), "40 - 40 :\t{0,1,0,0,0,0,0,0,0,0}\n");
}

TEST(Count, HexadecimalDigits) {
    const TemporaryFile file("digits.txt", "3.243f6a8885a308d3");
    qmp::TextReader reader(file.path());
    EXPECT_EQ(printed_by([&] { count_digits(reader, 0, 16); }),
              "1 - 16 :\t{1,0,1,3,1,1,1,0,4,0,2,0,0,1,0,1}\n");
}

TEST(Count, TellsHowFarItHasCome) {
    const TemporaryFile file("digits.txt", "3.14159265358");
    qmp::TextReader reader(file.path());
    EXPECT_EQ(printed_by([&] { count_digits(reader, 1, 11, 4); }),
              "2 - 5 :\t{0,1,0,0,1,1,0,0,0,1}\n"
              "2 - 9 :\t{0,1,1,1,1,2,1,0,0,1}\n"
              "2 - 11 :\t{0,1,1,1,1,3,1,0,1,1}\n");
    EXPECT_EQ(printed_by([&] { count_digits(reader, 0, 8, 4); }),
              "1 - 4 :\t{0,2,0,0,1,1,0,0,0,0}\n"
              "1 - 8 :\t{0,2,1,0,1,2,1,0,0,1}\n");
}

TEST(Count, AnInvalidDigitIsTheReadersException) {
    const TemporaryFile file("digits.txt", "3." + std::string(100, '1') + ":");
    qmp::TextReader reader(file.path());
    kelvara_test::expect_string_exception([&] { count_digits(reader, 0, 10); }, "TextReader::read()",
                                          "Invalid Digit: 0 - 101");
}

}  // namespace
}  // namespace Ordalis
