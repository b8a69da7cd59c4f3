// Reads settings records (settings_record.h): one field per line, in the order in which they were written.
//
// A field is a label up to the next tab, which is not looked at, a value, and a line end. What does not read
// as that is a ParseException "Unexpected end of string.": a line break or the end of the text before the
// tab, anything but a digit, CR or LF in an integer, no digit at all, the end of the text inside a value. The
// text ends at its end or at a NUL.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qmp {

class TextCursor {
  public:
    // The text must outlive the cursor.
    explicit TextCursor(std::string_view text) : rest_(text.substr(0, text.find('\0'))) {}

    // Optional '-' and decimal digits; CR is skipped. Values beyond 64 bits saturate.
    std::int64_t read_integer_field();
    // An integer: everything but 0 is true.
    bool read_bool_field();
    // The integer is the number's bit pattern, signed or unsigned.
    double read_double_field();
    // Everything up to LF but CR. A '*' ends the string early, and what stands behind it stays: unless a tab
    // follows in the same line, the next field fails.
    std::string read_string_field();

    // An integer field, or an integer without a label: a label does not begin with a digit or '-'. Without
    // one, white space or the end of the text must follow, and white space around the integer is skipped.
    std::int64_t read_integer();

    // The text not yet read.
    std::string_view rest() const { return rest_; }

  private:
    void skip_white_space();
    void skip_label();
    char take();
    // The value of an integer field.
    std::string take_integer();

    std::string_view rest_;
};

}  // namespace qmp
