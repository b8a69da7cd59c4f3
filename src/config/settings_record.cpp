#include "config/settings_record.h"

#include <bit>

namespace qmp {

SettingsRecordWriter& SettingsRecordWriter::write_integer(std::string_view label, std::int64_t value) {
    return write_string(label, std::to_string(value));
}

SettingsRecordWriter& SettingsRecordWriter::write_bool(std::string_view label, bool value) {
    return write_string(label, value ? "1" : "0");
}

SettingsRecordWriter& SettingsRecordWriter::write_double(std::string_view label, double value) {
    return write_string(label, std::to_string(std::bit_cast<std::uint64_t>(value)));
}

SettingsRecordWriter& SettingsRecordWriter::write_string(std::string_view label, std::string_view value) {
    text_ += label;
    text_ += '\t';
    text_ += value;
    text_ += "\r\n";
    return *this;
}

SettingsRecordWriter& SettingsRecordWriter::append_lines(std::string_view lines) {
    text_ += lines;
    return *this;
}

}  // namespace qmp
