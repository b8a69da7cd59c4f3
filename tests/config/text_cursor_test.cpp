// Settings records, written and read back.
#include "config/text_cursor.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "config/settings_record.h"
#include "errors/exception.h"
#include "support/messages.h"
#include "support/random_words.h"

namespace {

using namespace std::string_view_literals;
using qmp::SettingsRecordWriter;
using qmp::TextCursor;

template <typename Function>
std::string complaint(Function&& function) {
    return kelvara_test::message_of<qmp::ParseException>(function);
}

const std::string damaged = "Unexpected end of string.";

std::int64_t integer(std::string_view text) {
    return TextCursor(text).read_integer_field();
}
std::string string(std::string_view text) {
    return TextCursor(text).read_string_field();
}

TEST(SettingsRecord, IsALinePerField) {
    SettingsRecordWriter writer;
    writer.write_integer("tds               :", -16)
        .write_bool("hashed        :", true)
        .write_bool("locked        :", false)
        .write_double("p                 :", 1.0)
        .write_string("path              :", "D:/a b")
        .write_string("framework         :", "pushpool")
        .append_lines("    worker threads:\t4\r\n");
    EXPECT_EQ(writer.take(),
              "tds               :\t-16\r\n"
              "hashed        :\t1\r\n"
              "locked        :\t0\r\n"
              "p                 :\t4607182418800017408\r\n"
              "path              :\tD:/a b\r\n"
              "framework         :\tpushpool\r\n"
              "    worker threads:\t4\r\n");
    EXPECT_EQ(writer.take(), "");
}

TEST(SettingsRecord, ComesBack) {
    kelvara_test::Random random;
    for (int i = 0; i < 500; ++i) {
        const auto number = static_cast<std::int64_t>(random.next() >> random.between(0, 63));
        const auto real = std::bit_cast<double>(random.next());
        const bool flag = random.between(0, 1) == 1;
        std::string path(random.between(0, 12), ' ');
        for (char& c : path) {
            do {
                c = static_cast<char>(random.between(1, 255));
            } while (c == '\r' || c == '\n' || c == '*');
        }
        const std::string text = SettingsRecordWriter()
                                     .write_integer("minIO             :", number)
                                     .write_string("path              :", path)
                                     .write_double("", real)
                                     .write_bool("hex               :", flag)
                                     .take();
        TextCursor cursor(text);
        EXPECT_EQ(cursor.read_integer_field(), number);
        EXPECT_EQ(cursor.read_string_field(), path);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(cursor.read_double_field()),
                  std::bit_cast<std::uint64_t>(real));
        EXPECT_EQ(cursor.read_bool_field(), flag);
        EXPECT_EQ(cursor.rest(), "");
    }
    for (const std::int64_t extreme : {std::numeric_limits<std::int64_t>::min(),
                                       std::numeric_limits<std::int64_t>::max(), std::int64_t{0}}) {
        EXPECT_EQ(integer(SettingsRecordWriter().write_integer("a:", extreme).take()), extreme);
    }
}

TEST(TextCursorFields, IgnoreTheLabel) {
    EXPECT_EQ(integer("allocator         :\t5\r\n"), 5);
    EXPECT_EQ(integer("\t5\n"), 5);
    EXPECT_EQ(integer("12 34\t5\n"), 5);
    EXPECT_EQ(string("*\ttext\r\n"), "text");
}

TEST(TextCursorFields, Integers) {
    EXPECT_EQ(integer("a:\t-7\r\n"), -7);
    EXPECT_EQ(integer("a:\t007\n"), 7);
    EXPECT_EQ(integer("a:\t1\r2\r\r\n"), 12);
    EXPECT_EQ(integer("a:\t99999999999999999999\n"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(integer("a:\t-99999999999999999999\n"), std::numeric_limits<std::int64_t>::min());
    TextCursor cursor("a:\t1\r\nb:\t2\nc:\t3\r\n");
    EXPECT_EQ(cursor.read_integer_field(), 1);
    EXPECT_EQ(cursor.rest(), "b:\t2\nc:\t3\r\n");
    EXPECT_EQ(cursor.read_integer_field(), 2);
    EXPECT_EQ(cursor.read_integer_field(), 3);
    EXPECT_EQ(complaint([&] { cursor.read_integer_field(); }), damaged);
}

TEST(TextCursorFields, BooleansAreIntegers) {
    EXPECT_TRUE(TextCursor("a:\t1\r\n").read_bool_field());
    EXPECT_TRUE(TextCursor("a:\t-2\r\n").read_bool_field());
    EXPECT_FALSE(TextCursor("a:\t0\r\n").read_bool_field());
    EXPECT_EQ(complaint([] { TextCursor("a:\ttrue\r\n").read_bool_field(); }), damaged);
}

TEST(TextCursorFields, DoublesAreBitPatternsWithOrWithoutASign) {
    EXPECT_EQ(TextCursor("p:\t4607182418800017408\r\n").read_double_field(), 1.0);
    EXPECT_EQ(TextCursor("p:\t13830554455654793216\r\n").read_double_field(), -1.0);
    EXPECT_EQ(TextCursor("p:\t-4616189618054758400\r\n").read_double_field(), -1.0);
    EXPECT_TRUE(std::signbit(TextCursor("p:\t-9223372036854775808\r\n").read_double_field()));
    EXPECT_EQ(complaint([] { TextCursor("p:\t1.0\r\n").read_double_field(); }), damaged);
}

TEST(TextCursorFields, Strings) {
    EXPECT_EQ(string("path              :\t\r\n"), "");
    EXPECT_EQ(string("path              :\t C:\\a\tb \r\n"), " C:\\a\tb ");
    EXPECT_EQ(string("path              :\ta\rb\n"), "ab");
}

// Kept as it is: settings with a '*' in a path do not come back.
TEST(TextCursorFields, AnAsteriskEndsAStringEarly) {
    TextCursor cursor("a:\tone*two\r\nb:\t3\r\n");
    EXPECT_EQ(cursor.read_string_field(), "one");
    EXPECT_EQ(cursor.rest(), "two\r\nb:\t3\r\n");
    EXPECT_EQ(complaint([&] { cursor.read_integer_field(); }), damaged);
    TextCursor with_tab("a:\tone*two\t3\r\n");
    EXPECT_EQ(with_tab.read_string_field(), "one");
    EXPECT_EQ(with_tab.read_integer_field(), 3);
    EXPECT_EQ(string("a:\tone*"), "one");
}

TEST(TextCursorFields, DamagedLinesAreAllTheSameError) {
    for (const auto text : {""sv,
                            "a"sv,
                            "a:"sv,
                            "a: 12\r\n"sv,
                            "a:\n\t12\n"sv,
                            "a:\r\t12\n"sv,
                            "\r\na:\t12\r\n"sv,
                            "a:\t"sv,
                            "a:\t12"sv,
                            "a:\t12\r"sv,
                            "a:\t12x\r\n"sv,
                            "a:\tx\r\n"sv,
                            "a:\t1 2\r\n"sv,
                            "a:\t 12\r\n"sv,
                            "a:\t12 \r\n"sv,
                            "a:\t1-2\r\n"sv,
                            "a:\t--1\r\n"sv,
                            "a:\t+1\r\n"sv,
                            "a:\t-\r\n"sv,
                            "a:\t\r\n"sv,
                            "a:\t1\0\r\n"sv,
                            "a\0:\t12\r\n"sv}) {
        EXPECT_EQ(complaint([&] { TextCursor(text).read_integer_field(); }), damaged) << text;
    }
    for (const auto text :
         {""sv, "a"sv, "a: b\r\n"sv, "a:\n\tb\n"sv, "a:\t"sv, "a:\tb"sv, "a:\tb\r"sv, "a:\tb\0\r\n"sv}) {
        EXPECT_EQ(complaint([&] { TextCursor(text).read_string_field(); }), damaged) << text;
    }
}

TEST(TextCursor, ReadsIntegersBetweenWhiteSpace) {
    TextCursor cursor("  12\t-7\r\n0 9223372036854775807 -9999999999999999999 ");
    EXPECT_EQ(cursor.read_integer(), 12);
    EXPECT_EQ(cursor.read_integer(), -7);
    EXPECT_EQ(cursor.read_integer(), 0);
    EXPECT_EQ(cursor.read_integer(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(cursor.read_integer(), std::numeric_limits<std::int64_t>::min());
    EXPECT_THROW(cursor.read_integer(), qmp::ParseException);
}

TEST(TextCursor, ReadsIntegersWithAndWithoutLabelsBetweenFields) {
    TextCursor cursor(
        "framework         :\tpushpool\r\n    worker threads:\t6\r\n1\r\ndec               :\t50\r\n");
    EXPECT_EQ(cursor.read_string_field(), "pushpool");
    EXPECT_EQ(cursor.read_integer(), 6);
    EXPECT_EQ(cursor.read_integer(), 1);
    EXPECT_EQ(cursor.read_integer_field(), 50);
}

TEST(TextCursor, RefusesWhatIsNoInteger) {
    for (const char* text : {"", "   ", "-", "- 1", "12x", "x", "label 12\r\n", "label:\t12x\r\n", "label:\t",
                             "label:\t12", "label\n\t12\n"}) {
        TextCursor cursor(text);
        EXPECT_EQ(complaint([&] { cursor.read_integer(); }), damaged) << text;
    }
}

TEST(TextCursor, ErrorsNameNoFunction) {
    try {
        TextCursor("").read_integer();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const qmp::ParseException& exception) {
        EXPECT_EQ(exception.function(), "");
    }
}

}  // namespace
