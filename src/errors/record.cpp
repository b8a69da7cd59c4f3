#include "errors/record.h"

#include "errors/exception.h"

namespace qmp {

RecordWriter& RecordWriter::text(std::string_view value) {
    bytes_ += value.substr(0, value.find('\0'));
    bytes_ += '\0';
    return *this;
}

RecordWriter& RecordWriter::integer(std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) bytes_ += static_cast<char>(value >> (8 * i) & 0xff);
    return *this;
}

std::string RecordReader::text() {
    const std::size_t end = rest_.find('\0');
    if (end == std::string_view::npos)
        throw ParseException("RecordReader::text()", "Unexpected end of string.");
    std::string value(rest_.substr(0, end));
    rest_.remove_prefix(end + 1);
    return value;
}

std::uint64_t RecordReader::integer(std::size_t bytes) {
    if (rest_.size() < bytes) throw ParseException("RecordReader::integer()", "Unexpected end of string.");
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        value |= static_cast<std::uint64_t>(static_cast<unsigned char>(rest_[i])) << (8 * i);
    }
    rest_.remove_prefix(bytes);
    return value;
}

void RecordReader::finish() const {
    if (!rest_.empty())
        throw ParseException("RecordReader::finish()", "Unexpected text after the last field.");
}

}  // namespace qmp
