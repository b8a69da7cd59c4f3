// Settings as a text of lines: label, tab, value, CR LF. The form in which checkpoints keep them.
//
// The label's blanks and ':' are the caller's. Objects inside settings follow as a line with their name and
// then their own lines. text_cursor.h reads the lines back.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace qmp {

class SettingsRecordWriter {
  public:
    SettingsRecordWriter& write_integer(std::string_view label, std::int64_t value);
    // 1 or 0.
    SettingsRecordWriter& write_bool(std::string_view label, bool value);
    // The decimal integer of the number's bit pattern.
    SettingsRecordWriter& write_double(std::string_view label, double value);
    // The text as it is. One with CR, LF, NUL or '*' in it is not the same when it is read back.
    SettingsRecordWriter& write_string(std::string_view label, std::string_view value);
    // The lines that an object inside has written.
    SettingsRecordWriter& append_lines(std::string_view lines);
    std::string take() { return std::exchange(text_, {}); }

  private:
    std::string text_;
};

}  // namespace qmp
