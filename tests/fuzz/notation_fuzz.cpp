// Any bytes as a file of settings: they are refused with a proper message, or read as a value that is the
// same after it was written and read again. Also any bytes as a settings record.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "config/notation_parser.h"
#include "config/text_cursor.h"
#include "config/text_file.h"
#include "errors/exception.h"
#include "support/notation_trees.h"

namespace {

using qmp::ParseException;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "notation_fuzz: %s\n", what);
    std::abort();
}

// "Line N: ..." with N in the text.
void check_message(const std::string& message, const std::string& text) {
    const auto lines = static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    if (!message.starts_with("Line ")) fail("a message without a line");
    char* end = nullptr;
    const std::uint64_t line = std::strtoull(message.c_str() + 5, &end, 10);
    if (line < 1 || line > lines) fail("a line that the text does not have");
    if (end[0] != ':' || end[1] != ' ' || end[2] == '\0') fail("a message that says nothing");
}

void try_notation(const std::string& text) {
    std::unique_ptr<qmp::notation::Value> value;
    try {
        value = qmp::notation::parse(text);
    } catch (const ParseException& exception) {
        if (!exception.function().empty()) fail("a message with a function");
        check_message(exception.message(), text);
        return;
    }
    if (!kelvara_test::same_tree(*value, *value->clone())) fail("a copy that differs");
    try {
        const auto again = qmp::notation::parse(value->to_text(0) + "\n");
        if (!kelvara_test::same_tree(*value, *again)) fail("a value that differs when it is read again");
    } catch (const ParseException&) {
        fail("a text of our own that is refused");
    }
}

void try_record(const std::string& text) {
    qmp::TextCursor cursor(text);
    try {
        // All kinds of fields in turn; each consumes something.
        for (int kind = 0;; kind = (kind + 1) % 5) {
            const std::size_t before = cursor.rest().size();
            if (kind == 0) cursor.read_integer();
            if (kind == 1) cursor.read_string_field();
            if (kind == 2) cursor.read_integer_field();
            if (kind == 3) cursor.read_double_field();
            if (kind == 4) cursor.read_bool_field();
            if (cursor.rest().size() >= before) fail("a field without a character");
        }
    } catch (const ParseException& exception) {
        if (exception.message() != "Unexpected end of string.") fail("an unknown message of a record");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = qmp::decode_text(std::string(data, data + size)).text;
    try_notation(text);
    try_record(text);
    return 0;
}
