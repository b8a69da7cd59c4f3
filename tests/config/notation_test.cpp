// The tree of values: construction, typed access, copies and texts.
#include "config/notation.h"

#include <gtest/gtest.h>

#include "errors/exception.h"
#include "support/messages.h"
#include "support/notation_trees.h"

namespace {

using namespace qmp::notation;
using qmp::ParseException;

template <typename Function>
std::string complaint(Function&& function) {
    return kelvara_test::message_of<ParseException>(function);
}

Object one_of_each() {
    Object object;
    object.insert_integer("Integer", -5);
    object.insert_string("String", "text");
    object.insert_bool("Yes", true);
    object.insert_bool("No", false);
    object.insert("Array", std::make_unique<Array>());
    object.insert("Object", std::make_unique<Object>());
    return object;
}

std::unique_ptr<String> string(std::string text) {
    return std::make_unique<String>(std::move(text));
}

TEST(Notation, TypesHaveCodesAndNames) {
    const char* const names[] = {"Integer", "String", "Array", "Object"};
    for (std::uint32_t code = 0; code < 4; ++code) {
        EXPECT_EQ(type_name(static_cast<Type>(code)), names[code]);
        EXPECT_EQ(static_cast<std::uint32_t>(make_value(static_cast<Type>(code))->type()), code);
    }
    EXPECT_EQ(type_name(static_cast<Type>(4)), "invalid type");
    EXPECT_EQ(complaint([] { make_value(static_cast<Type>(4)); }), "Invalid object type: 4");
    EXPECT_EQ(complaint([] { make_value(static_cast<Type>(4294967295)); }),
              "Invalid object type: 4294967295");
}

TEST(Notation, TypedAccessFindsWhatWasInserted) {
    const Object object = one_of_each();
    EXPECT_EQ(object.get_integer("Integer", "Settings"), -5);
    EXPECT_EQ(object.get_string("String", "Settings"), "text");
    EXPECT_TRUE(object.get_bool("Yes", "Settings"));
    EXPECT_FALSE(object.get_bool("No", "Settings"));
    EXPECT_EQ(object.get_array("Array", "Settings").size(), 0u);
    EXPECT_TRUE(object.get_object("Object", "Settings").members().empty());
    EXPECT_EQ(object.get("String").type(), Type::string);
    EXPECT_EQ(object.find("String"), &object.get("String"));
}

TEST(Notation, MissingKeysAreNamed) {
    const Object object = one_of_each();
    EXPECT_EQ(object.find("RaidFile"), nullptr);
    EXPECT_EQ(object.find("string"), nullptr);
    EXPECT_EQ(complaint([&] { object.get("RaidFile"); }), "Key not found: RaidFile");
    EXPECT_EQ(complaint([&] { object.get_integer("", "Settings"); }), "Key not found: ");
    EXPECT_EQ(complaint([&] { object.get_string("S", "Settings"); }), "Key not found: S");
    EXPECT_EQ(complaint([&] { object.get_bool("B", "Settings"); }), "Key not found: B");
    EXPECT_EQ(complaint([&] { object.get_array("A", "Settings"); }), "Key not found: A");
    EXPECT_EQ(complaint([&] { object.get_object("O", "Settings"); }), "Key not found: O");
}

TEST(Notation, WrongTypesAreNamedWithTheirContext) {
    const Object object = one_of_each();
    EXPECT_EQ(complaint([&] { object.get_integer("String", "Custom Compute"); }),
              "Custom Compute: Expected Integer, got String.");
    EXPECT_EQ(complaint([&] { object.get_string("Integer", "Custom Compute"); }),
              "Custom Compute: Expected String, got Integer.");
    EXPECT_EQ(complaint([&] { object.get_array("Object", "Custom Compute"); }),
              "Custom Compute: Expected Array, got Object.");
    EXPECT_EQ(complaint([&] { object.get_object("Array", "Custom Compute"); }),
              "Custom Compute: Expected Object, got Array.");
    EXPECT_EQ(complaint([&] { object.get_bool("Integer", "Custom Compute"); }),
              "Custom Compute: Expected String, got Integer.");
    EXPECT_EQ(complaint([&] { as_integer(object.get("String"), ""); }), "Expected Integer, got String.");
}

TEST(Notation, BooleansAreTwoExactStrings) {
    for (const char* text : {"True", "TRUE", "1", "", " true", "true ", "falsee"}) {
        const String value(text);
        EXPECT_EQ(complaint([&] { as_bool(value, "Settings"); }), "Expected true or false.") << text;
    }
}

TEST(Notation, ErrorsNameNoFunction) {
    try {
        one_of_each().get("RaidFile");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ParseException& exception) {
        EXPECT_EQ(exception.function(), "");
    }
}

TEST(Notation, KeysAreUnique) {
    Object object = one_of_each();
    EXPECT_EQ(complaint([&] { object.insert_integer("String", 1); }), "Duplicate key in object.");
    EXPECT_EQ(object.members().size(), 6u);
    EXPECT_EQ(object.get_string("String", ""), "text");
}

TEST(Notation, MembersOfOneObjectMoveBehindThoseOfAnother) {
    Object object;
    object.insert_integer("First", 1);
    Object more;
    more.insert_integer("Second", 2, "why");
    more.insert_integer("Third", 3);
    object.insert_members(std::move(more));
    EXPECT_EQ(object.to_text(0),
              "{\r\n    First : 1\r\n\r\n    //  why\r\n    Second : 2\r\n    Third : 3\r\n}\r\n");
    EXPECT_EQ(object.get_integer("Third", ""), 3);
}

TEST(Notation, CopiesAreWhole) {
    kelvara_test::Random random;
    for (int i = 0; i < 200; ++i) {
        const auto tree = kelvara_test::random_tree(random, 5);
        const auto copy = tree->clone();
        EXPECT_NE(copy.get(), tree.get());
        EXPECT_TRUE(kelvara_test::same_tree(*copy, *tree));
        EXPECT_EQ(copy->to_text(1), tree->to_text(1));
    }
}

TEST(NotationText, Integers) {
    EXPECT_EQ(Integer(0).to_text(3), "0");
    EXPECT_EQ(Integer(INT64_MIN).to_text(0), "-9223372036854775808");
    EXPECT_EQ(Integer(INT64_MAX).to_text(0), "9223372036854775807");
}

TEST(NotationText, StringsEscapeQuotesAndBackslashes) {
    EXPECT_EQ(String("").to_text(3), "\"\"");
    EXPECT_EQ(String("D:\\a \"b\"\n//").to_text(0), "\"D:\\\\a \\\"b\\\"\n//\"");
}

TEST(NotationText, ArraysOfIntegersAreOneLine) {
    Array array;
    EXPECT_EQ(array.to_text(0), "[]");
    EXPECT_EQ(array.to_text(2), "[]");
    array.append(1);
    EXPECT_EQ(array.to_text(2), "[1]");
    array.append(-2);
    array.append(3);
    EXPECT_EQ(array.to_text(2), "[1 -2 3]");
}

TEST(NotationText, OneStringIsOneLineAndTwoAreFour) {
    Array array;
    array.append(string("C:/"));
    EXPECT_EQ(array.to_text(1), "[\"C:/\"]");
    array.append(string("D:/"));
    EXPECT_EQ(array.to_text(0), "[\r\n    \"C:/\"\r\n    \"D:/\"\r\n]\r\n");
    EXPECT_EQ(array.to_text(1), "[\r\n        \"C:/\"\r\n        \"D:/\"\r\n    ]\r\n");
}

TEST(NotationText, OtherArraysHaveALinePerElement) {
    Array mixed;
    mixed.append(1);
    mixed.append(string("a"));
    EXPECT_EQ(mixed.to_text(0), "[\r\n    1\r\n    \"a\"\r\n]\r\n");

    Array nested;
    nested.append(std::make_unique<Array>());
    EXPECT_EQ(nested.to_text(0), "[\r\n    []\r\n]\r\n");

    Array objects;
    auto object = std::make_unique<Object>();
    object->insert_string("Type", "raid0");
    objects.append(std::move(object));
    // What ends in a line break of its own leaves an empty line behind it.
    EXPECT_EQ(objects.to_text(0), "[\r\n    {\r\n        Type : \"raid0\"\r\n    }\r\n\r\n]\r\n");
}

TEST(NotationText, Objects) {
    Object object;
    object.comment = "not shown";
    EXPECT_EQ(object.to_text(0), "{}");
    object.comment = "All of it";
    object.insert_integer("A", 1);
    auto inner = std::make_unique<Object>();
    inner->insert_bool("Yes", true);
    object.insert("Inner", std::move(inner), "One line");
    object.insert("Empty", std::make_unique<Object>(), "Two\nlines");
    EXPECT_EQ(object.to_text(0),
              "{   //  All of it\r\n"
              "    A : 1\r\n"
              "\r\n"
              "    //  One line\r\n"
              "    Inner : {\r\n"
              "        Yes : \"true\"\r\n"
              "    }\r\n"
              "\r\n"
              "\r\n"
              "    //  Two\r\n"
              "    //  lines\r\n"
              "    Empty : {}\r\n"
              "}\r\n");
    const std::string inside = object.to_text(1);
    EXPECT_TRUE(inside.starts_with("{   //  All of it\r\n        A : 1\r\n")) << inside;
    EXPECT_TRUE(inside.ends_with("\r\n        Empty : {}\r\n    }\r\n")) << inside;
}

}  // namespace
