// Reads saved settings: decimal integers, in order, out of a text.
//
// An integer stands alone, separated by whitespace, or in a record line "label<tab>value" with its line
// end; a label does not begin with a digit or '-' and is skipped unread. Anything else, and an early end,
// is a ParseException "Unexpected end of string.".
#pragma once

#include <cstdint>
#include <string_view>

namespace qmp {

class TextCursor {
  public:
    // The text must outlive the cursor.
    explicit TextCursor(std::string_view text) : rest_(text) {}

    // Values beyond 64 bits saturate.
    std::int64_t read_integer();
    // The text not yet read.
    std::string_view rest() const { return rest_; }

  private:
    // True when a label was there.
    bool skip_label();

    std::string_view rest_;
};

}  // namespace qmp
