// Any bytes as a file of settings: they are refused with a proper message, or read as a value that is the
// same after it was written and read again.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "config/notation_parser.h"
#include "config/text_file.h"
#include "errors/exception.h"
#include "fuzz/fuzz_failure.h"
#include "support/notation_trees.h"

namespace {

using kelvara_test::fuzz_failure;
using qmp::ParseException;

// "Line N: ..." with N in the text.
void check_message(const std::string& message, const std::string& text) {
    const auto lines = static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    if (!message.starts_with("Line ")) fuzz_failure("a message without a line");
    char* end = nullptr;
    const std::uint64_t line = std::strtoull(message.c_str() + 5, &end, 10);
    if (line < 1 || line > lines) fuzz_failure("a line that the text does not have");
    if (end[0] != ':' || end[1] != ' ' || end[2] == '\0') fuzz_failure("a message that says nothing");
}

void try_notation(const std::string& text) {
    std::unique_ptr<qmp::notation::Value> value;
    try {
        value = qmp::notation::parse(text);
    } catch (const ParseException& exception) {
        if (!exception.function().empty()) fuzz_failure("a message with a function");
        check_message(exception.message(), text);
        return;
    }
    if (!kelvara_test::same_tree(*value, *value->clone())) fuzz_failure("a copy that differs");
    try {
        const auto again = qmp::notation::parse(value->to_text(0) + "\n");
        if (!kelvara_test::same_tree(*value, *again))
            fuzz_failure("a value that differs when it is read again");
    } catch (const ParseException&) {
        fuzz_failure("a text of our own that is refused");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = qmp::decode_text(std::string(data, data + size)).text;
    try_notation(text);
    return 0;
}
