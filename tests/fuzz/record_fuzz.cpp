// Any bytes as a settings record: fields are read one after another until one is refused.
#include <cstdint>
#include <string>

#include "config/text_cursor.h"
#include "errors/exception.h"
#include "fuzz/fuzz_failure.h"

using kelvara_test::fuzz_failure;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
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
            if (cursor.rest().size() >= before) fuzz_failure("a field without a character");
        }
    } catch (const qmp::ParseException& exception) {
        if (exception.message() != "Unexpected end of string.")
            fuzz_failure("an unknown message of a record");
    }
    return 0;
}
