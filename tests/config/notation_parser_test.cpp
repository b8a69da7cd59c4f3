#include "config/notation_parser.h"

#include <gtest/gtest.h>

#include <fstream>

#include "errors/exception.h"
#include "errors/file_exception.h"
#include "platform/os/error_codes.h"
#include "support/folder.h"
#include "support/messages.h"
#include "support/notation_trees.h"
#include "support/sanitized.h"

namespace {

using namespace qmp::notation;
using kelvara_test::same_tree;

const std::string end_of_text = "Unexpected null character or end of file.";

std::string complaint(std::string_view text) {
    return kelvara_test::message_of<qmp::ParseException>([&] { parse(text); });
}

std::string line(int number, const std::string& message) {
    return "Line " + std::to_string(number) + ": " + message;
}

std::int64_t integer(std::string_view text) {
    return as_integer(*parse(text), "");
}
std::string string(std::string_view text) {
    return as_string(*parse(text), "");
}

// The keys of an object in their order, each followed by a blank.
std::string keys(std::string_view text) {
    const auto root = parse(text);
    std::string result;
    for (const Member& member : as_object(*root, "").members()) result += member.key + ' ';
    return result;
}

TEST(NotationParser, ObjectsKeepTheirMembersInOrder) {
    const auto root = parse("{ C : 1 B : [1 2 3] A : 5 }");
    const Object& object = as_object(*root, "");
    EXPECT_EQ(object.members().size(), 3u);
    EXPECT_EQ(object.members()[0].key, "C");
    EXPECT_EQ(object.get_integer("C", ""), 1);
    const Array& array = object.get_array("B", "");
    EXPECT_EQ(array.size(), 3u);
    EXPECT_EQ(as_integer(array[2], ""), 3);
    EXPECT_EQ(object.members()[2].key, "A");
    EXPECT_EQ(object.get_integer("A", ""), 5);
}

TEST(NotationParser, NothingNeedsToStandApart) {
    EXPECT_EQ(as_object(*parse("{A:1}"), "").get_integer("A", ""), 1);
    const auto root = parse("[[1][\"a\"\"b\"]{A:\"\"B:[]}{}]");
    const Array& array = as_array(*root, "");
    EXPECT_EQ(array.size(), 4u);
    EXPECT_EQ(as_string(as_array(array[1], "")[1], ""), "b");
    EXPECT_EQ(as_object(array[2], "").get_string("A", ""), "");
    EXPECT_EQ(as_object(array[2], "").get_array("B", "").size(), 0u);
    EXPECT_TRUE(as_object(array[3], "").members().empty());
}

TEST(NotationParser, WhiteSpaceAndCommentsStandEverywhere) {
    const auto plain = parse("{A:1 B:[2 \"c\"]}");
    for (const char* text : {
             "\t\r\n {\t\r\n A\t\r\n :\t\r\n 1\t\r\n B\r:\r[\r2\r\"c\"\r]\r}",
             "//x\n{//x\nA//x\n://x\n1//x\nB//x\n://x\n[//x\n2//x\n\"c\"//x\n]//x\n}//x\n",
             "// first } \" line\r\n//\r\n////\r\n{ A : 1 // /* \r\n B : [ 2 \"c\" ] }",
         }) {
        EXPECT_TRUE(same_tree(*parse(text), *plain)) << text;
    }
}

TEST(NotationParser, LineEndsOfAllKinds) {
    const auto plain = parse("{A:1 B:2}");
    for (const char* text : {"{\nA : 1\nB : 2\n}\n", "{\r\nA : 1\r\nB : 2\r\n}\r\n", "{\r\nA : 1\nB : 2\r\n}",
                             "{\n\rA : 1\n\rB : 2\n\r}\n\r"}) {
        EXPECT_TRUE(same_tree(*parse(text), *plain)) << text;
    }
    EXPECT_EQ(complaint("{\r\nA : 1\r\n\r\nB = 2\r\n}"), line(4, "Expected colon after identifier."));
    EXPECT_EQ(complaint("{\nA : 1\n\nB = 2\n}"), line(4, "Expected colon after identifier."));
    // A carriage return alone is no new line.
    EXPECT_EQ(complaint("{\rA : 1\r\rB = 2\r}"), line(1, "Expected colon after identifier."));
}

TEST(NotationParser, WhatFollowsTheValueIsNotRead) {
    for (const char* text : {"{A:1}", "{A:1} ", "{A:1} // end", "{A:1}}", "{A:1}{B", "{A:1}\"", "{A:1}1a"}) {
        EXPECT_EQ(keys(text), "A ") << text;
    }
    EXPECT_EQ(string("\"a\"\"b\""), "a");
}

TEST(NotationParser, TheTextEndsAtANul) {
    EXPECT_EQ(complaint(std::string_view("\0{}", 3)), line(1, end_of_text));
    EXPECT_EQ(complaint(std::string_view("{\nA:\0 1}", 8)), line(2, end_of_text));
    EXPECT_EQ(complaint(std::string_view("[\"a\0b\"]", 7)), line(1, end_of_text));
    EXPECT_EQ(complaint(std::string_view("{A\0B:1}", 7)), line(1, end_of_text));
}

TEST(NotationParser, ATextThatEndsEarlyFailsOnItsLastLine) {
    for (const std::string text :
         {"",        " ",         "\n",          "//",        "// comment", "{",        "{ A",
          "{ A\\",   "{ A :",     "{ A : 1",     "{ A : 12 ", "{ A : 1 //", "{ A : \"", "{ A : \"x\\",
          "{ A : [", "{ A : [ 1", "{ A : [ 1 ]", "[",         "[[]",        "12",       "-12",
          "-",       "/"}) {
        const int lines = text == "\n" ? 2 : 1;
        const bool literal = text == "/";
        EXPECT_EQ(complaint(text), line(lines, literal ? "Invalid integer literal." : end_of_text)) << text;
    }
    EXPECT_EQ(complaint("{ A : 1\n  B : 2\n"), line(3, end_of_text));
    EXPECT_EQ(complaint("{ A : 1\n  B : 2\n// no line end"), line(3, end_of_text));
    EXPECT_EQ(complaint("{ A : \"1\n2\n3"), line(3, end_of_text));
    EXPECT_EQ(complaint("{ A // x\n"), line(2, end_of_text));
}

TEST(NotationIntegers, AreDecimalWithASign) {
    EXPECT_EQ(integer("0 "), 0);
    EXPECT_EQ(integer("-17\n"), -17);
    EXPECT_EQ(integer("007//"), 7);
    EXPECT_EQ(integer("-0\t"), 0);
    EXPECT_EQ(integer("9223372036854775807 "), INT64_MAX);
    EXPECT_EQ(integer("-9223372036854775808 "), INT64_MIN);
}

TEST(NotationIntegers, WrapAround) {
    EXPECT_EQ(integer("9223372036854775808 "), INT64_MIN);
    EXPECT_EQ(integer("18446744073709551615 "), -1);
    EXPECT_EQ(integer("18446744073709551616 "), 0);
    EXPECT_EQ(integer("18446744073709551659 "), 43);
    EXPECT_EQ(integer("-18446744073709551615 "), 1);
}

TEST(NotationIntegers, EndAtWhiteSpaceACommentOrABracket) {
    for (const char* text : {"[12 ]", "[12\t]", "[12\r]", "[12\n]", "[12//\n]", "[12]", "[-12 12]"}) {
        EXPECT_GE(as_array(*parse(text), "").size(), 1u) << text;
    }
    for (const char* text : {"12a", "[12a]", "[1.5]", "[1,2]", "[1[2]]", "[1{}]", "[1\"a\"]", "[1/2]", "[1:]",
                             "[--1]", "[+1]", "[-]", "[- 1]", "[1-]", "x", "{A:B}", "{A:true}", "[\x01]"}) {
        EXPECT_EQ(complaint(text), line(1, "Invalid integer literal.")) << text;
    }
    EXPECT_EQ(complaint("[1\n2\n3x]"), line(3, "Invalid integer literal."));
}

TEST(NotationStrings, TakeEverythingAsItIs) {
    EXPECT_EQ(string("\"\""), "");
    EXPECT_EQ(string("\"a // b { [ ] } : \t\r\n c\""), "a // b { [ ] } : \t\r\n c");
    EXPECT_EQ(string("\"\xcf\x80\xff\""), "\xcf\x80\xff");
    EXPECT_EQ(string("\"\\\"\\\\\\\"\""), "\"\\\"");
}

TEST(NotationStrings, EscapeQuotesAndBackslashesAlone) {
    EXPECT_EQ(complaint("\"C:\\temp\""), line(1, "Invalid escape character: t"));
    EXPECT_EQ(complaint("\"\\/\""), line(1, "Invalid escape character: /"));
    EXPECT_EQ(complaint("[\"a\n\n\\ \"]"), line(3, "Invalid escape character:  "));
    EXPECT_EQ(complaint("\"\n\\\n\""), line(2, "Invalid escape character: \n"));
    // The whole character, not its first byte.
    EXPECT_EQ(complaint("\"\\\xcf\x80\xcf\x81\""), line(1, "Invalid escape character: \xcf\x80"));
    EXPECT_EQ(complaint("\"\\\xff\xfe\""), line(1, "Invalid escape character: \xff"));
}

TEST(NotationStrings, CountTheirLines) {
    EXPECT_EQ(complaint("[\"1\n2\n3\" x]"), line(3, "Invalid integer literal."));
}

TEST(NotationArrays, CloseOnce) {
    EXPECT_EQ(complaint("]"), line(1, "Unexpected ']'."));
    EXPECT_EQ(complaint("\n}"), line(2, "Unexpected '}'."));
    EXPECT_EQ(complaint("[1}"), line(1, "Unexpected '}'."));
    EXPECT_EQ(complaint("[\n}"), line(2, "Unexpected '}'."));
    EXPECT_EQ(complaint("{A:]"), line(1, "Unexpected ']'."));
    EXPECT_EQ(complaint("{A:\n}"), line(2, "Unexpected '}'."));
}

TEST(NotationKeys, AreRunsOfIdentifierCharacters) {
    const std::string all = "azAZ09!#$%&'()*+-./=?@^_|~";
    EXPECT_EQ(keys("{" + all + ":1}"), all + " ");
    EXPECT_EQ(keys("{/:1}"), "/ ");
    EXPECT_EQ(keys("{a/b:1 a-:2}"), "a/b a- ");
    EXPECT_EQ(keys("{:1}"), " ");
    for (int c = 1; c < 256; ++c) {
        const char character = static_cast<char>(c);
        const bool ends = std::string_view(" \t\r\n\":\\").find(character) != std::string_view::npos;
        if (ends) continue;
        const std::string text = std::string("{A") + character + "B:1}";
        if (is_identifier_character(character)) {
            EXPECT_EQ(keys(text), std::string("A") + character + "B ");
        } else {
            EXPECT_EQ(complaint(text), line(1, "Invalid character in identifier.")) << c;
        }
    }
    int identifiers = 0;
    for (int c = 0; c < 256; ++c) identifiers += is_identifier_character(static_cast<char>(c)) ? 1 : 0;
    EXPECT_EQ(identifiers, 26 + 26 + 10 + 20);
}

TEST(NotationKeys, EndAtWhiteSpaceQuotesColonsAndComments) {
    for (const char* text : {"{A:1}", "{A :1}", "{A\t:1}", "{A\n:1}", "{A\r:1}", "{A\r\n:1}", "{A//B:2\n:1}",
                             "{A //B:2\n:1}", "{A//\n//\n:1}"}) {
        EXPECT_EQ(keys(text), "A ") << text;
    }
    for (const char* text : {"{A 1}", "{A B:1}", "{A\"B\":1}", "{\"A\":1}", "{A}", "{A[1]}"}) {
        const bool invalid = std::string_view(text) == "{A}" || std::string_view(text) == "{A[1]}";
        EXPECT_EQ(complaint(text),
                  line(1, invalid ? "Invalid character in identifier." : "Expected colon after identifier."))
            << text;
    }
    EXPECT_EQ(complaint("{A//\nB:1}"), line(2, "Expected colon after identifier."));
    EXPECT_EQ(complaint("{A\r\nB:1}"), line(2, "Expected colon after identifier."));
}

TEST(NotationKeys, EscapeQuotesAndBackslashes) {
    EXPECT_EQ(keys("{\\\"A\\\\\\\":1}"), "\"A\\\" ");
    EXPECT_EQ(complaint("{\nA\\:1}"), line(2, "Invalid escape character: :"));
}

TEST(NotationKeys, AreUniqueInOneObject) {
    EXPECT_EQ(complaint("{ A : 1 A : 2 }"), line(1, "Duplicate key in object."));
    EXPECT_EQ(complaint("{ A : 1\nB : 2\n\\\\ : 3 \\\\ : [4\n5] }"), line(4, "Duplicate key in object."));
    EXPECT_EQ(keys("{ A : 1 a : 2 B : { A : 3 } }"), "A a B ");
}

TEST(NotationDepth, IsLimited) {
    const auto nested = [](std::uint64_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    const auto deepest = parse(nested(deepest_nesting));
    EXPECT_TRUE(same_tree(*deepest, *deepest->clone()));
    EXPECT_TRUE(same_tree(*parse(deepest->to_text(0)), *deepest));
    EXPECT_EQ(complaint(nested(deepest_nesting + 1)), line(1, "Nesting is too deep."));
    EXPECT_EQ(complaint(std::string(1'000'000, '[')), line(1, "Nesting is too deep."));

    std::string objects;
    for (int i = 0; i < 1'000'000; ++i) objects += "{A:\n";
    EXPECT_EQ(complaint(objects), line(1001, "Nesting is too deep."));

    // Beside each other they may be as many as they like.
    std::string flat = "[";
    for (int i = 0; i < 3000; ++i) flat += "[[]]{A:{}}";
    EXPECT_EQ(as_array(*parse(flat + "]"), "").size(), 6000u);
}

// This would take hours if the time grew with the square of the size.
TEST(NotationSize, MillionsOfKeysElementsAndCharacters) {
    constexpr int count = kelvara_test::sanitized ? 100'000 : 1'000'000;
    std::string text = "{\n";
    for (int i = 0; i < count; ++i) text += "Key" + std::to_string(i) + ":" + std::to_string(i) + "\n";
    text += "Array:[";
    for (int i = 0; i < count; ++i) text += "1 ";
    text += "] String:\"" + std::string(4 * count, 'x') + "\"\n//" + std::string(4 * count, '/') + "\n}";
    const auto root = parse(text);
    const Object& object = as_object(*root, "");
    EXPECT_EQ(object.members().size(), count + 2u);
    EXPECT_EQ(object.get_integer("Key99999", ""), 99'999);
    EXPECT_EQ(object.get_array("Array", "").size(), std::uint64_t{count});
    EXPECT_EQ(object.get_string("String", "").size(), 4u * count);
    EXPECT_GT(root->to_text(0).size(), 15u * count);
}

TEST(NotationRoundTrip, RandomTreesComeBack) {
    kelvara_test::Random random;
    std::uint64_t longest = 0;
    for (std::uint64_t i = 0; i < 2000 * kelvara_test::multiplier(); ++i) {
        const auto tree = kelvara_test::random_tree(random, i % 7);
        const std::string text = tree->to_text(0);
        longest = std::max<std::uint64_t>(longest, text.size());
        // An integer that is the whole text needs something to end it.
        const auto parsed = parse(text + "\n");
        ASSERT_TRUE(same_tree(*parsed, *tree)) << text;
        ASSERT_TRUE(same_tree(*parse(tree->to_text(3) + "\n"), *tree)) << text;
    }
    EXPECT_GT(longest, 1000u);
}

TEST(NotationRoundTrip, CommentsAreNotKept) {
    Object object;
    object.comment = "of the object";
    object.insert_integer("A", 1, "of the\nmember");
    const auto parsed = parse(object.to_text(0));
    EXPECT_EQ(parsed->to_text(0), "{\r\n    A : 1\r\n}\r\n");
}

class NotationFiles : public testing::Test {
  protected:
    std::string put(const std::string& content) const {
        std::ofstream(folder_.native("settings.ini"), std::ios::binary) << content;
        return folder_.path("settings.ini");
    }
    kelvara_test::TemporaryFolder folder_;
};

TEST_F(NotationFiles, OfEveryEncoding) {
    const std::string little_endian("\xff\xfe{\0A\0:\0\"\0\xc0\x03\"\0}\0", 16);
    const std::string big_endian("\xfe\xff\0{\0A\0:\0\"\x03\xc0\0\"\0}", 16);
    for (const std::string& content :
         {std::string("{A:\"\xcf\x80\"}"), std::string("\xef\xbb\xbf{A:\"\xcf\x80\"}"), little_endian,
          big_endian}) {
        EXPECT_EQ(as_object(*parse_file(put(content)), "").get_string("A", ""), "\xcf\x80") << content;
    }
}

TEST_F(NotationFiles, ErrorsNameTheLine) {
    const std::string path = put("\xef\xbb\xbf//  Header\r\n{\r\n    A ; 1\r\n}\r\n");
    EXPECT_EQ(kelvara_test::message_of<qmp::ParseException>([&] { parse_file(path); }),
              line(3, "Expected colon after identifier."));
}

TEST_F(NotationFiles, AMissingFileIsAFileException) {
    try {
        parse_file(folder_.path("none.ini"));
        ADD_FAILURE() << "nothing was thrown";
    } catch (const qmp::FileIO::FileException& exception) {
        EXPECT_EQ(exception.message(), "Unable to open file.");
        EXPECT_EQ(exception.path(), folder_.path("none.ini"));
        EXPECT_EQ(exception.error_code(), qmp::os::file_not_found);
    }
}

}  // namespace
